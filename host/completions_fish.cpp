#include "host/completions.h"

#include "host/program_help.h"

#include <algorithm>

namespace host
{

namespace
{

const char *const beginning = R"(# What fish offers behind `zerb`. Made by `zerb completions fish`.
function __zerb_at -d 'whether the line begins with these words, of which the last may be followed by others'
    set -l words (commandline -opc)
    set -l last (math (count $argv) + 1)
    test (count $words) -ge $last; and test "$words[2..$last]" = "$argv"
end
function __zerb_just_at -d 'whether the line is these words and the one being typed'
    set -l words (commandline -opc)
    test "$words[2..-1]" = "$argv"
end
complete -c zerb -n __zerb_just_at -f -l help -d 'explain the program'
complete -c zerb -n __zerb_just_at -f -l version -d 'name the version'
)";

std::string quoted(const std::string &text)
{
    std::string result = "'";
    for (char character : text)
        result += character == '\'' || character == '\\' ? std::string("\\") + character : std::string(1, character);
    return result + "'";
}

std::string valueOf(const Argument &argument)
{
    std::string words;
    for (const std::string &choice : choicesOf(argument))
        words += (words.empty() ? "" : " ") + choice;
    if (!words.empty())
        return " -x -a " + quoted(words);
    return argument.value.empty() ? "" : takesPath(argument) ? " -r -F" : " -x";
}

std::string namesOf(const Argument &argument)
{
    std::string names;
    for (const std::string &name : argument.names)
        names += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    return names;
}

std::string rowsOf(const ArgumentList &list)
{
    const std::string place = list.name.substr(list.name.find(' ') + 1);
    const std::string row = "complete -c zerb -n '__zerb_at " + place + "'";
    auto isPath = [](const Argument &argument) { return !argument.isOption() && takesPath(argument); };
    std::string rows;
    if (std::none_of(list.arguments.begin(), list.arguments.end(), isPath))
        rows += row + " -f\n";
    for (const Argument &argument : list.arguments)
        if (argument.isOption())
            rows += row + namesOf(argument) + valueOf(argument) + " -d " + quoted(argument.description) + "\n";
    for (const ArgumentList &part : list.parts)
        rows += "complete -c zerb -n '__zerb_just_at " + place + "' -f -a " + lastWordOf(part) + " -d " + quoted(part.explanation.summary) +
                "\n" + rowsOf(part);
    return rows;
}

}   // namespace

std::string fishCompletions(const std::vector<ArgumentList> &commands)
{
    std::string script = beginning;
    for (const ArgumentList &command : commands)
        script += "complete -c zerb -n __zerb_just_at -f -a " + lastWordOf(command) + " -d " + quoted(command.explanation.summary) + "\n" +
                  rowsOf(command);
    return script;
}

}   // namespace host
