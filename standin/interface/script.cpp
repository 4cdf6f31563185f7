// The text of a script: lines of words.
#include "standin/interface/script.h"

#include <charconv>
#include <sstream>

namespace standin
{

namespace
{

using Words = std::vector<std::string>;

template <typename Number>
bool readNumber(const std::string &word, Number &number)
{
    auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size();
}

struct KeyName
{
    const char *name;
    UInt8 character;
};

constexpr KeyName keyNames[] = {
    {"return", 0x0D}, {"enter", 0x03}, {"escape", 0x1B}, {"tab", 0x09}, {"space", 0x20}, {"delete", 0x08},
};

bool readKey(const std::string &word, UInt8 &character)
{
    for (const KeyName &key : keyNames)
        if (word == key.name)
            return character = key.character, true;
    character = static_cast<UInt8>(word[0]);
    return word.size() == 1;
}

bool isOnScreen(const Script &script, SInt16 width, SInt16 height)
{
    return script.steps.empty() && width > 0 && height > 0 && width <= 4095;
}

// A line that does not begin with a tick: how the screen is.
bool readSetting(const Words &words, Script &script)
{
    if (words[0] == "screen" && words.size() == 3)
        return readNumber(words[1], script.width) && readNumber(words[2], script.height) && isOnScreen(script, script.width, script.height);
    if (words[0] == "begin" && words.size() == 2)
        return readNumber(words[1], script.firstTick);
    if (words[0] == "poll" && words.size() == 2)
        return readNumber(words[1], script.ticksPerPoll) && script.ticksPerPoll > 0 && script.ticksPerPoll <= 3600;
    return false;
}

bool readAction(const Words &words, ScriptStep &step)
{
    const std::string &action = words[1];
    if (action == "mouse" && words.size() == 4)
    {
        step.kind = ScriptStep::Kind::mouse;
        return readNumber(words[2], step.where.h) && readNumber(words[3], step.where.v);
    }
    if (action == "key" && words.size() == 3)
    {
        step.kind = ScriptStep::Kind::key;
        return readKey(words[2], step.character);
    }
    if (action == "picture" && words.size() == 3)
    {
        step.kind = ScriptStep::Kind::picture;
        step.file = words[2];
        return true;
    }
    if (words.size() != 2 || (action != "down" && action != "up" && action != "close"))
        return false;
    step.kind = action == "down" ? ScriptStep::Kind::press : action == "up" ? ScriptStep::Kind::release : ScriptStep::Kind::close;
    return true;
}

bool readStep(const Words &words, Script &script)
{
    ScriptStep step;
    if (words.size() < 2 || !readNumber(words[0], step.tick) || !readAction(words, step))
        return false;
    if (!script.steps.empty() && step.tick < script.steps.back().tick)
        return false;
    script.steps.push_back(std::move(step));
    return true;
}

bool beginsWithDigit(const std::string &word)
{
    return word[0] >= '0' && word[0] <= '9';
}

Words wordsOf(const std::string &line)
{
    std::istringstream stream(line.substr(0, line.find('#')));
    Words words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

}   // namespace

std::string readScript(const std::string &text, Script &script)
{
    script = {};
    std::istringstream lines(text);
    int number = 1;
    for (std::string line; std::getline(lines, line); ++number)
    {
        const Words words = wordsOf(line);
        if (words.empty())
            continue;
        if (!(beginsWithDigit(words[0]) ? readStep(words, script) : readSetting(words, script)))
            return "line " + std::to_string(number) + " of the script is no step and no setting, or goes back in time";
    }
    return "";
}

}   // namespace standin
