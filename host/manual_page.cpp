#include "host/manual_page.h"

#include "host/program_help.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace host
{

namespace
{

// What would be a command of the page's language, or another sign in print than on a keyboard.
std::string escaped(const std::string &text)
{
    std::string result;
    for (char character : text)
        switch (character)
        {
        case '\\': result += "\\e"; break;
        case '-': result += "\\-"; break;
        case '\'': result += "\\(aq"; break;
        case '`': result += "\\(ga"; break;
        case '^': result += "\\(ha"; break;
        case '~': result += "\\(ti"; break;
        case '"': result += "\\(dq"; break;
        default: result += character;
        }
    return result.starts_with('.') ? "\\&" + result : result;
}

std::string bold(const std::string &text)
{
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(const std::string &text)
{
    return "\\fI" + escaped(text) + "\\fR";
}

// Lines that are to stay as they are.
std::string literally(const std::vector<std::string> &lines)
{
    std::string text = ".PP\n.nf\n";
    for (const std::string &line : lines)
        text += escaped(line) + "\n";
    return text + ".fi\n";
}

std::vector<std::string> linesOf(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// Paragraphs are filled anew; indented lines are a table or something typed, and stay.
std::string running(const std::string &text)
{
    std::string page;
    std::vector<std::string> indented;
    bool inParagraph = false;
    auto endIndented = [&] {
        if (!indented.empty())
            page += literally(indented);
        indented.clear();
    };
    for (const std::string &line : linesOf(text))
    {
        if (line.starts_with(' '))
        {
            indented.push_back(line);
            inParagraph = false;
            continue;
        }
        endIndented();
        if (!line.empty())
            page += (inParagraph ? "" : ".PP\n") + escaped(line) + "\n";
        inParagraph = !line.empty();
    }
    endIndented();
    return page;
}

std::string synopsis(const ArgumentList &list)
{
    std::string line = bold(list.name);
    if (std::any_of(list.arguments.begin(), list.arguments.end(), [](const Argument &each) { return each.isOption(); }))
        line += " [" + italic("OPTION") + "]...";
    for (const Argument &argument : list.arguments)
        if (!argument.isOption())
        {
            const std::string word = italic(argument.value) + (argument.isList ? "..." : "");
            line += argument.isRequired ? " " + word : " [" + word + "]";
        }
    if (!list.parts.empty())
        line += " " + italic("PART") + " ...";
    return line + "\n";
}

std::string tagOf(const Argument &argument)
{
    std::string tag;
    for (const std::string &name : argument.names)
        tag += (tag.empty() ? "" : ", ") + bold(name);
    if (!argument.value.empty())
        tag += (tag.empty() ? "" : " ") + italic(argument.value);
    return tag;
}

std::string argumentRows(const ArgumentList &list)
{
    std::string rows;
    for (bool options : {false, true})
        for (const Argument &argument : list.arguments)
            if (argument.isOption() == options)
                rows += ".TP\n" + tagOf(argument) + "\n" + escaped(argument.description) + "\n";
    return rows;
}

std::string heading(const std::string &title, const std::string &version)
{
    std::string capitals = title;
    std::transform(capitals.begin(), capitals.end(), capitals.begin(), [](unsigned char each) { return std::toupper(each); });
    return ".\\\" Made by `zerb man`.\n.TH \"" + escaped(capitals) + "\" 1 \"\" \"zerb " + escaped(version) + "\" \"User Commands\"\n";
}

std::string partSection(const ArgumentList &part)
{
    return ".SS \"" + escaped(part.name) + "\"\n" + escaped(part.explanation.summary) + ".\n.PP\n" + synopsis(part) +
           running(part.explanation.description) + argumentRows(part) + literally(linesOf(part.explanation.examples));
}

}   // namespace

std::string programPage(const std::vector<ArgumentList> &commands, const std::string &version)
{
    std::string page = heading("zerb", version) + ".SH NAME\nzerb \\- what Macintosh software knows about files, on Linux disks\n" +
                       ".SH SYNOPSIS\n" + bold("zerb") + " " + italic("COMMAND") + " [" + italic("ARGUMENT") + "]...\n.PP\n" +
                       bold("zerb") + " " + italic("COMMAND") + " " + bold("--help") + "\n.PP\n" + bold("zerb --version") +
                       "\n.SH DESCRIPTION\n" + escaped(programSummary) + "\n.SH COMMANDS\n";
    for (const ArgumentList &command : commands)
        page += ".TP\n\\fBzerb\\-" + escaped(lastWordOf(command)) + "\\fR(1)\n" + escaped(command.explanation.summary) + "\n";
    page += ".SH \"EXIT STATUS\"\n" + escaped(exitStatuses) + "\n.SH ENVIRONMENT\n";
    for (const EnvironmentVariable &variable : environmentVariables)
        page += ".TP\n" + bold(variable.name) + "\n" + escaped(variable.meaning) + "\n";
    return page;
}

std::string commandPage(const ArgumentList &command, const std::string &version)
{
    const std::string title = "zerb-" + lastWordOf(command);
    std::string page = heading(title, version) + ".SH NAME\n" + escaped(title) + " \\- " + escaped(command.explanation.summary) +
                       "\n.SH SYNOPSIS\n" + synopsis(command) + ".SH DESCRIPTION\n" + running(command.explanation.description) +
                       ".SH OPTIONS\n" + argumentRows(command);
    if (!command.parts.empty())
        page += ".SH PARTS\n";
    for (const ArgumentList &part : command.parts)
        page += partSection(part);
    return page + ".SH EXAMPLES\n" + literally(linesOf(command.explanation.examples)) + ".SH \"EXIT STATUS\"\n" + escaped(exitStatuses) +
           "\n.SH \"SEE ALSO\"\n" + bold("zerb") + "(1)\n";
}

}   // namespace host
