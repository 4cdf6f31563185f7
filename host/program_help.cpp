#include "host/program_help.h"

namespace host
{

namespace
{

const EnvironmentVariable variables[] = {
    {"ZERB_STARTUP_VOLUME", "a folder that serves as the startup volume; paths begin in it and cannot leave it"},
    {"ZERB_VOLUMES", "folders that serve as further volumes: NAME=FOLDER;NAME=FOLDER..."},
    {"ZERB_DEFAULT_DIRECTORY", "the default directory, as `zerb cd` hands it on"},
    {"ZERB_STATE_FOLDER", "where file IDs are kept, in place of a folder among the user's own"},
    {"ZERB_PLUGIN", "the plug-in to load, where it is not beside this program"},
    {"NO_COLOR", "if set and not empty, nothing is coloured"},
};

// Two columns, and two lines where the first word is too long.
std::string row(const std::string &word, const std::string &meaning, std::size_t width)
{
    const std::string gap = word.size() < width ? std::string(width - word.size(), ' ') : "\n  " + std::string(width, ' ');
    return "  " + word + gap + meaning + "\n";
}

}   // namespace

const char *const programSummary = "Looks at and changes what Macintosh software knows about files, on Linux disks.";
const char *const exitStatuses = "0 all done, 1 something failed, 2 wrong usage.";
const std::span<const EnvironmentVariable> environmentVariables = variables;

std::string lastWordOf(const ArgumentList &list)
{
    return list.name.substr(list.name.rfind(' ') + 1);
}

std::string programHelp(const std::vector<ArgumentList> &commands)
{
    std::string text = std::string(programSummary) + "\n\nUsage: zerb COMMAND [ARGUMENT...]\n\nCommands:\n";
    for (const ArgumentList &command : commands)
        text += row(lastWordOf(command), command.explanation.summary, 12);
    text += "\n`zerb COMMAND --help` explains one of them, with examples. `zerb --version` names the version.\n\n"
            "Exit status: " +
            std::string(exitStatuses) + "\n\nEnvironment:\n";
    for (const EnvironmentVariable &variable : environmentVariables)
        text += row(variable.name, variable.meaning, 21);
    return text;
}

}   // namespace host
