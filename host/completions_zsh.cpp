#include "host/completions.h"

#include "host/program_help.h"

namespace host
{

namespace
{

// Between single quotes, with a backslash before what ends a text there.
std::string quoted(const std::string &text, const std::string &special)
{
    std::string result;
    for (char character : text)
    {
        if (special.find(character) != std::string::npos)
            result += '\\';
        result += character == '\'' ? "'\\''" : std::string(1, character);
    }
    return result;
}

std::string valueOf(const Argument &argument)
{
    if (argument.value.empty())
        return "";
    std::string action = takesPath(argument) ? "_files" : " ";
    for (const std::string &choice : choicesOf(argument))
        action = (action == " " ? "(" : action.substr(0, action.size() - 1) + " ") + choice + ")";
    return ":" + quoted(argument.value, ":\\") + ":" + action;
}

// As _arguments has it: '(-a --all)'{-a,--all}'[description]:VALUE:action'
std::string optionSpecification(const Argument &argument)
{
    std::string excluded, names;
    for (const std::string &name : argument.names)
    {
        excluded += (excluded.empty() ? "" : " ") + name;
        names += (names.empty() ? "" : ",") + name + (argument.value.empty() ? "" : name.starts_with("--") ? "=" : "+");
    }
    const std::string text = "[" + quoted(argument.description, "[]:\\") + "]" + valueOf(argument) + "'";
    if (argument.names.size() == 1)
        return "'" + names + text;
    return "'(" + excluded + ")'{" + names + "}'" + text;
}

std::string argumentsOf(const ArgumentList &list, const std::string &margin)
{
    std::string text = margin + "_arguments -s -S :";
    for (const Argument &argument : list.arguments)
    {
        text += " \\\n" + margin + "    ";
        if (argument.isOption())
            text += optionSpecification(argument);
        else
            text += (argument.isList ? "'*" : argument.isRequired ? "':" : "'::") + valueOf(argument).substr(argument.isList ? 0 : 1) + "'";
    }
    return text + "\n";
}

std::string choiceOf(const std::vector<ArgumentList> &lists, const std::string &what, const std::string &margin)
{
    std::string text = margin + "local -a choices=(\n";
    for (const ArgumentList &list : lists)
        text += margin + "    '" + lastWordOf(list) + ":" + quoted(list.explanation.summary, ":\\") + "'\n";
    return text + margin + ")\n" + margin + "_describe " + what + " choices\n";
}

// The words before a command or part are taken away, so that what follows is its own.
std::string caseOf(const std::vector<ArgumentList> &lists, const std::string &what, const std::string &margin)
{
    std::string text = margin + "if (( CURRENT == 2 )); then\n" + choiceOf(lists, what, margin + "    ") + margin + "    return\n" +
                       margin + "fi\n" + margin + "shift words\n" + margin + "(( CURRENT-- ))\n" + margin + "case $words[1] in\n";
    for (const ArgumentList &list : lists)
        text += margin + lastWordOf(list) + ")\n" +
                (list.parts.empty() ? argumentsOf(list, margin + "    ") : caseOf(list.parts, "part", margin + "    ")) + margin +
                "    ;;\n";
    return text + margin + "esac\n";
}

}   // namespace

std::string zshCompletions(const std::vector<ArgumentList> &commands)
{
    return "#compdef zerb\n# What zsh offers behind `zerb`. Made by `zerb completions zsh`.\n_zerb()\n{\n" +
           caseOf(commands, "command", "    ") + "}\n\n_zerb \"$@\"\n";
}

}   // namespace host
