// zerb access: who may do what with a folder.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/commands/people.h"
#include "host/commands/volume_argument.h"
#include "host/numbers.h"
#include "host/text.h"

#include "platform/results.h"

#include <cstdio>
#include <memory>

namespace host
{

namespace
{

constexpr UInt32 maySearch = 1, mayRead = 2, mayWrite = 4;   // of one kind of people
constexpr int ownersRights = 0, groupsRights = 8, everyonesRights = 16, callersRights = 24;
constexpr UInt32 blankAccess = 0x10000000, callerIsOwner = 0x80000000;

struct Access
{
    FSVolumeRefNum volume = 0;
    SInt32 owner = 0, group = 0;
    UInt32 rights = 0;
};

struct Options
{
    std::vector<std::string> paths;
    std::string owner, group;       // as typed; empty: as it is
    std::optional<UInt32> rights;   // of owner, group and everyone
    bool blank = false;
    bool json = false;

    bool changes() const { return !owner.empty() || !group.empty() || rights || blank; }
};

// ---------------------------------------------------------------------------------------------------------------------
// Rights as people type and read them

UInt32 rightsOf(UInt32 all, int shift)
{
    return all >> shift & 7;
}

std::vector<std::string> wordsFor(UInt32 rights)
{
    std::vector<std::string> words;
    if (rights & maySearch)
        words.emplace_back("search");
    if (rights & mayRead)
        words.emplace_back("read");
    if (rights & mayWrite)
        words.emplace_back("write");
    return words;
}

std::string sentenceFor(UInt32 rights)
{
    std::string sentence;
    for (const std::string &word : wordsFor(rights))
        sentence += (sentence.empty() ? "" : ", ") + word;
    return sentence.empty() ? "nothing" : sentence;
}

[[noreturn]] void refuseRights(const std::string &typed)
{
    throw UsageError("\"" + typed + "\" is neither three digits from 0 to 7, as 750, nor nine letters, as rwxr-x---");
}

// One kind of people, from a digit of a mode (4 read, 2 write, 1 search).
UInt32 rightsFromDigit(unsigned digit)
{
    return ((digit & 4) ? mayRead : 0) | ((digit & 2) ? mayWrite : 0) | ((digit & 1) ? maySearch : 0);
}

unsigned digitFromLetters(const std::string &typed, std::size_t at)
{
    unsigned digit = 0;
    for (std::size_t i = 0; i < 3; ++i)
    {
        const char letter = typed[at + i];
        if (letter != "rwx"[i] && letter != '-')
            refuseRights(typed);
        digit = digit << 1 | (letter != '-' ? 1u : 0u);
    }
    return digit;
}

UInt32 rightsFromText(const std::string &typed)
{
    const bool isDigits = typed.size() == 3 && typed.find_first_not_of("01234567") == std::string::npos;
    if (!isDigits && typed.size() != 9)
        refuseRights(typed);
    UInt32 rights = 0;
    for (std::size_t i = 0; i < 3; ++i)
    {
        const unsigned digit = isDigits ? static_cast<unsigned>(typed[i] - '0') : digitFromLetters(typed, i * 3);
        rights |= rightsFromDigit(digit) << (i * 8);   // owner, group, everyone
    }
    return rights;
}

// ---------------------------------------------------------------------------------------------------------------------
// Showing

OSStatus readAccess(const Plugin &plugin, const std::string &path, FSRef &ref, Access &access)
{
    OSStatus result = findObject(path, Links::follow, ref);
    if (result == noErr)
        result = volumeOfPath(path, access.volume);
    if (result == noErr)
        result = plugin.FSGetDirAccess(&ref, &access.owner, &access.group, &access.rights);
    return result;
}

void showAccess(const Plugin &plugin, const std::string &path, const Access &access)
{
    const UInt32 rights = access.rights;
    std::printf("%s\n", printable(path).c_str());
    std::printf("  owner         %s\n", shownPerson(plugin, access.volume, People::user, static_cast<UInt32>(access.owner)).c_str());
    std::printf("  group         %s\n", shownPerson(plugin, access.volume, People::group, static_cast<UInt32>(access.group)).c_str());
    std::printf("  owner may     %s\n", sentenceFor(rightsOf(rights, ownersRights)).c_str());
    std::printf("  group may     %s\n", sentenceFor(rightsOf(rights, groupsRights)).c_str());
    std::printf("  everyone may  %s\n", sentenceFor(rightsOf(rights, everyonesRights)).c_str());
    std::printf("  you may       %s%s\n", sentenceFor(rightsOf(rights, callersRights)).c_str(),
                rights & callerIsOwner ? "; you may change this" : "");
    std::printf("  blank access  %s\n", rights & blankAccess ? "yes: it has the rights of the folder that it lies in" : "no");
}

Json accessJson(const Plugin &plugin, const std::string &path, const Access &access)
{
    const UInt32 rights = access.rights;
    return {{"path", path},
            {"owner", personJson(plugin, access.volume, People::user, static_cast<UInt32>(access.owner))},
            {"group", personJson(plugin, access.volume, People::group, static_cast<UInt32>(access.group))},
            {"owner_may", wordsFor(rightsOf(rights, ownersRights))},
            {"group_may", wordsFor(rightsOf(rights, groupsRights))},
            {"everyone_may", wordsFor(rightsOf(rights, everyonesRights))},
            {"you_may", wordsFor(rightsOf(rights, callersRights))},
            {"you_are_owner", (rights & callerIsOwner) != 0},
            {"blank_access", (rights & blankAccess) != 0},
            {"bits", hexadecimal(rights, 8)}};
}

// ---------------------------------------------------------------------------------------------------------------------
// Changing

// A word that is no number is a name; nobody of that name is reported. Without a word `wanted` stays as it is and is set again: the
// File Manager sets owner, group and rights at once.
OSErr takePerson(Invocation &invocation, FSVolumeRefNum volume, People people, const std::string &word, SInt32 &wanted)
{
    if (word.empty())
        return noErr;
    const std::optional<UInt32> typed = numberFromWord(word);
    UInt32 number = typed.value_or(0);
    const OSErr result = typed ? static_cast<OSErr>(noErr) : numberOfName(invocation.plugin, volume, people, word, number);
    if (result == noErr)
        wanted = static_cast<SInt32>(number);
    else
        invocation.report.problem(word,
                                  describeResult(result) + ": there is no " + wordFor(people) + " of that name (`zerb who` looks one up)");
    return result;
}

const char *adviceFor(OSStatus result)
{
    switch (result)
    {
    case dirNFErr: return "; only folders have access rights of this kind";
    case permErr:
    case afpAccessDenied: return "; nothing was changed: its owner may change rights, and only root may give it to somebody else";
    case paramErr: return "; a volume's root has no folder to take rights from";
    default: return "";
    }
}

OSStatus reportPath(Invocation &invocation, const std::string &path, OSStatus result)
{
    invocation.report.problem(path, describeResult(result) + ": " + meaningOfResult(result) + adviceFor(result));
    return result;
}

// Blank access that is there stays, unless rights are given: another owner alone does not end it.
OSStatus changeAccess(Invocation &invocation, const Options &options, const std::string &path)
{
    FSRef ref;
    Access access;
    OSStatus result = readAccess(invocation.plugin, path, ref, access);
    if (result != noErr)
        return reportPath(invocation, path, result);
    result = takePerson(invocation, access.volume, People::user, options.owner, access.owner);
    if (result == noErr)
        result = takePerson(invocation, access.volume, People::group, options.group, access.group);
    if (result != noErr)
        return result;
    const UInt32 rights = options.rights.value_or(access.rights) | (options.blank ? blankAccess : 0);
    result = invocation.plugin.FSSetDirAccess(&ref, access.owner, access.group, rights);
    return result == noErr ? noErr : reportPath(invocation, path, result);
}

void showPath(Invocation &invocation, const Options &options, const std::string &path, Json &list)
{
    FSRef ref;
    Access access;
    const OSStatus result = readAccess(invocation.plugin, path, ref, access);
    if (result != noErr)
    {
        invocation.report.problem(path,
                                  describeResult(result) + ": " + meaningOfResult(result) + (result == dirNFErr ? adviceFor(result) : ""));
        list.push_back(errorJson(path, result));
    }
    else if (options.json)
        list.push_back(accessJson(invocation.plugin, path, access));
    else
        showAccess(invocation.plugin, path, access);
}

void work(Invocation &invocation, const Options &options)
{
    Json list = Json::array();
    for (const std::string &path : options.paths)
        if (!options.changes())
            showPath(invocation, options, path, list);
        else if (OSStatus result = changeAccess(invocation, options, path))
            list.push_back(errorJson(path, result));
        else if (options.json)
            showPath(invocation, options, path, list);
    if (options.json)
        std::fputs(jsonText(list).c_str(), stdout);
}

Arguments::Reader readPerson(std::string &person)
{
    return [&person](const std::string &typed) {
        if (typed.empty())
            throw UsageError("a name or a number is wanted");
        numberFromWord(typed);   // throws if it is too large
        person = typed;
    };
}

Action declareAccess(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("FOLDER", options->paths, "folders to show or to change");
    arguments.text("--owner", "USER", readPerson(options->owner), "make this user the owner: a name or a number");
    arguments.text("--group", "GROUP", readPerson(options->group), "make this its group: a name or a number");
    auto rights = arguments.text(
        "--rights", "RIGHTS", [options](const std::string &typed) { options->rights = rightsFromText(typed); },
        "of owner, group and everyone: three digits, or nine letters (r read, w write, x search)");
    arguments.flag("--blank", options->blank, "give it the rights of the folder that it lies in; --rights ends that").excludes(rights);
    arguments.json(options->json);
    return [options](Invocation &invocation) { work(invocation, *options); };
}

}   // namespace

const Command accessCommand = {
    "access",
    "Show and set who may do what with folders",
    "Shows owner and group, and what the owner, the group, everyone, and you yourself may do. With an option that sets\n"
    "something, it is set, and nothing is shown without --json. All that is asked for one folder is done, or nothing of it.\n"
    "A folder with blank access has the rights that its enclosing folder had when that was set.\n",
    "  zerb access Work\n"
    "  zerb access --rights 750 --group staff Work\n"
    "  zerb access --rights rwxr-x--- Work\n"
    "  zerb access --blank Work/Old\n",
    declareAccess,
};

}   // namespace host
