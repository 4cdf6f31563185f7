// zerb who: numbers of users and groups, and their names.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/commands/people.h"
#include "host/commands/volume_argument.h"
#include "host/text.h"

#include "platform/results.h"

#include <cstdio>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::vector<std::string> words;
    bool users = false, groups = false;   // neither: both
    bool json = false;
};

struct Person
{
    OSErr result = fnfErr;
    UInt32 number = 0;
    std::string name;
};

Person lookUp(const Plugin &plugin, FSVolumeRefNum volume, People people, const std::string &word)
{
    Person person;
    person.name = word;
    if (std::optional<UInt32> number = numberFromWord(word))
    {
        person.number = *number;
        person.result = nameOfNumber(plugin, volume, people, *number, person.name);
    }
    else
        person.result = numberOfName(plugin, volume, people, word, person.number);
    return person;
}

std::vector<People> wantedPeople(const Options &options)
{
    if (options.users != options.groups)
        return {options.users ? People::user : People::group};
    return {People::user, People::group};
}

// A failure only if no kind of people is found: most groups have no user of their name.
void showWord(Invocation &invocation, const Options &options, FSVolumeRefNum volume, const std::string &word, Json &list)
{
    OSErr failure = fnfErr;
    bool isFound = false;
    Json json = {{"asked_for", word}};
    for (People people : wantedPeople(options))
    {
        const Person person = lookUp(invocation.plugin, volume, people, word);
        json[wordFor(people)] = person.result == noErr ? Json{{"id", person.number}, {"name", person.name}} : Json(nullptr);
        isFound |= person.result == noErr;
        if (person.result != noErr && person.result != fnfErr)
            failure = person.result;
        if (person.result == noErr && !options.json)
            std::printf("%-5s  %u  %s\n", wordFor(people), unsigned{person.number}, printable(person.name).c_str());
    }
    if (isFound)
        return list.push_back(std::move(json));
    const char *step = failure == fnfErr
                           ? "no user or group of this machine has that name or number (`getent passwd` and `getent group` list them)"
                           : "asking the system's name service";
    failure == fnfErr ? invocation.report.problem(word, describeResult(failure) + ": " + step)
                      : invocation.report.failure(word, failure, step);
    list.push_back(errorJson(word, failure));
}

void showAll(Invocation &invocation, const Options &options)
{
    FSVolumeRefNum volume = 0;
    Json list = Json::array();
    if (OSStatus result = volumeOfPath("/", volume))
        return invocation.report.failure("/", result);
    for (const std::string &word : options.words)
        showWord(invocation, options, volume, word, list);
    if (options.json)
        std::fputs(jsonText(list).c_str(), stdout);
}

void checkWords(const Options &options)
{
    for (const std::string &word : options.words)
        numberFromWord(word);   // throws if it is too large
}

Action declareWho(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("WHO", options->words, "numbers and names of users and groups");
    arguments.flag("-u,--user", options->users, "users alone");
    arguments.flag("-g,--group", options->groups, "groups alone");
    arguments.json(options->json, "one array with one object per word; \"error\" in it tells of a failure");
    arguments.finalCheck([options] { checkWords(*options); });
    return [options](Invocation &invocation) { showAll(invocation, *options); };
}

}   // namespace

const Command whoCommand = {
    "who",
    "Show which user or group has a number, and which number has a name",
    "A word of digits alone is a number, every other word a name. Users and groups have numbers of their own, so one word\n"
    "may give two lines. They are those of the system's name service (/etc/passwd, /etc/group, or what stands for them).\n",
    "  zerb who root 1000\n"
    "  zerb who --group --json staff\n",
    declareWho,
};

}   // namespace host
