#include "host/completions.h"

#include "host/program_help.h"

#include <algorithm>
#include <functional>

namespace host
{

namespace
{

const char *const beginning = R"(# What bash offers behind `zerb`. Made by `zerb completions bash`.
_zerb()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} place=${COMP_WORDS[1]} words= paths=yes index
    # The = of --option=value makes words of its own.
    if [ "$current" = = ]; then
        current=
    elif [ "$previous" = = ]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
)";

const char *const afterOptions = R"(    # Behind -- there are no options.
    for ((index = 2; index < COMP_CWORD; ++index)); do
        [ "${COMP_WORDS[index]}" = -- ] && words= && break
    done
    case $current in
    -*) ;;
    *) words= ;;
    esac
    [ -n "$words" ] && COMPREPLY=($(compgen -W "$words" -- "$current"))
    [ -n "$paths" ] || compopt +o default
}
complete -o default -F _zerb zerb
)";

std::string placeOf(const ArgumentList &list)
{
    return list.name.substr(list.name.find(' ') + 1);
}

std::string joinedNames(const std::vector<ArgumentList> &lists)
{
    std::string names;
    for (const ArgumentList &list : lists)
        names += (names.empty() ? "" : " ") + lastWordOf(list);
    return names;
}

std::string optionsOf(const ArgumentList &list)
{
    std::string words;
    for (const Argument &argument : list.arguments)
        for (const std::string &name : argument.names)
            words += (words.empty() ? "" : " ") + name;
    return words;
}

// Those that have no parts, with those that are parts.
void forEachPlace(const std::vector<ArgumentList> &lists, const std::function<void(const ArgumentList &)> &act)
{
    for (const ArgumentList &list : lists)
    {
        if (list.parts.empty())
            act(list);
        forEachPlace(list.parts, act);
    }
}

// Which words the value of an option is one of; nothing, where it is a path, since paths are what bash offers by itself.
std::string valueRow(const ArgumentList &list, const Argument &argument)
{
    std::string pattern, choices;
    for (const std::string &name : argument.names)
        pattern += (pattern.empty() ? "'" : " | '") + placeOf(list) + " " + name + "'";
    for (const std::string &choice : choicesOf(argument))
        choices += (choices.empty() ? "" : " ") + choice;
    if (!choices.empty())
        return "    " + pattern + ") COMPREPLY=($(compgen -W '" + choices + "' -- \"$current\")) && return ;;\n";
    return "    " + pattern + ") " + (takesPath(argument) ? "" : "compopt +o default && ") + "return ;;\n";
}

std::string valueRows(const std::vector<ArgumentList> &commands)
{
    std::string rows = "    case \"$place $previous\" in\n";
    forEachPlace(commands, [&](const ArgumentList &list) {
        for (const Argument &argument : list.arguments)
            if (argument.isOption() && !argument.value.empty())
                rows += valueRow(list, argument);
    });
    return rows + "    esac\n";
}

std::string optionRows(const std::vector<ArgumentList> &commands)
{
    std::string rows = "    case $place in\n";
    forEachPlace(commands, [&](const ArgumentList &list) {
        auto isPath = [](const Argument &argument) { return !argument.isOption() && takesPath(argument); };
        const bool takesPaths = std::any_of(list.arguments.begin(), list.arguments.end(), isPath);
        rows += "    '" + placeOf(list) + "') words='" + optionsOf(list) + "'" + (takesPaths ? "" : " paths=") + " ;;\n";
    });
    return rows + "    esac\n";
}

std::string placeRows(const std::vector<ArgumentList> &commands)
{
    std::string rows = "    if [ \"$COMP_CWORD\" -eq 1 ]; then\n        COMPREPLY=($(compgen -W '" + joinedNames(commands) +
                       " --help --version' -- \"$current\"))\n        compopt +o default\n        return\n    fi\n    case $place in\n";
    for (const ArgumentList &command : commands)
        if (!command.parts.empty())
            rows += "    " + placeOf(command) + ") words='" + joinedNames(command.parts) + " --help' ;;\n";
    return rows + "    esac\n"
                  "    if [ -n \"$words\" ] && [ \"$COMP_CWORD\" -eq 2 ]; then\n"
                  "        COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n        compopt +o default\n        return\n    fi\n"
                  "    [ -z \"$words\" ] || place+=\" ${COMP_WORDS[2]}\"\n    words=\n";
}

}   // namespace

std::string bashCompletions(const std::vector<ArgumentList> &commands)
{
    return beginning + placeRows(commands) + valueRows(commands) + optionRows(commands) + afterOptions;
}

}   // namespace host
