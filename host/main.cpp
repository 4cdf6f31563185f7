// The command-line host: finds the command, reads its arguments, loads the plug-in and lets the command work.
//
// Exit status: 0 all done, 1 something failed, 2 wrong usage.
#include "host/command.h"
#include "host/default_directory.h"
#include "host/text.h"
#include "host/version.h"

#include "standin/standin.h"

#include <cstdio>
#include <exception>
#include <stdexcept>

namespace
{

enum ExitStatus
{
    done = 0,
    failed = 1,
    wrongUsage = 2
};

std::string programHelp()
{
    std::string text = "Looks at and changes what Macintosh software knows about files, on Linux disks.\n\n"
                       "Usage: zerb COMMAND [ARGUMENT...]\n\nCommands:\n";
    for (const host::Command *command : host::allCommands())
        text += "  " + std::string(command->name) + std::string(12 - std::string(command->name).size(), ' ') + command->summary + "\n";
    text += "\n`zerb COMMAND --help` explains one of them, with examples. `zerb --version` names the version.\n\n"
            "Exit status: 0 all done, 1 something failed, 2 wrong usage.\n\n"
            "Environment:\n"
            "  ZERB_STARTUP_VOLUME  a folder that serves as the startup volume; paths begin in it and cannot leave it\n"
            "  ZERB_VOLUMES         folders that serve as further volumes: NAME=FOLDER;NAME=FOLDER...\n"
            "  ZERB_DEFAULT_DIRECTORY\n"
            "                       the default directory, as `zerb cd` hands it on\n"
            "  ZERB_PLUGIN          the plug-in to load, where it is not beside this program\n"
            "  NO_COLOR             if set and not empty, nothing is coloured\n";
    return text;
}

int refuseUsage(const std::string &message, const std::string &help)
{
    std::fprintf(stderr, "zerb: %s\n`%s` shows how to use it.\n", host::printable(message).c_str(), help.c_str());
    return wrongUsage;
}

// Output that could not be written, on a full disk for instance, is a failure like any other.
int finish(bool anyFailure)
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return anyFailure ? failed : done;
    std::fprintf(stderr, "zerb: the output could not be written\n");
    return failed;
}

int work(const host::Command &command, const host::Action &action)
{
    if (const char *problem = standin::environmentProblem())
        throw std::runtime_error(host::printable(problem));
    host::Plugin plugin = host::loadPlugin();
    host::takeDefaultDirectoryFromEnvironment(plugin);
    host::Report report(command.name);
    host::Invocation invocation{plugin, report};
    action(invocation);
    return finish(report.anyFailure());
}

int runCommand(const host::Command &command, const std::vector<std::string> &words)
{
    std::string fullName = "zerb " + std::string(command.name);
    host::Arguments arguments(fullName, {command.summary, command.description, command.examples});
    host::Action action = command.declare(arguments);
    try
    {
        if (std::optional<std::string> help = arguments.read(words))
        {
            std::fputs(help->c_str(), stdout);
            return finish(false);
        }
    }
    catch (const host::UsageError &error)
    {
        return refuseUsage(std::string(command.name) + ": " + error.what(), fullName + " --help");
    }
    return work(command, action);
}

int run(const std::vector<std::string> &words)
{
    if (words.empty())
        return refuseUsage("a command is missing", "zerb --help");
    const std::string &first = words.front();
    bool helpWanted = first == "--help" || first == "-h" || first == "help";
    if (helpWanted && words.size() == 1)
    {
        std::fputs(programHelp().c_str(), stdout);
        return finish(false);
    }
    if (first == "--version")
    {
        std::printf("zerb %s\n", host::version);
        return finish(false);
    }
    const std::string &name = helpWanted ? words[1] : first;
    const host::Command *command = host::commandNamed(name);
    if (command == nullptr)
        return refuseUsage("there is no command \"" + name + "\"", "zerb --help");
    if (helpWanted)
        return runCommand(*command, {"--help"});
    return runCommand(*command, {words.begin() + 1, words.end()});
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    try
    {
        return run({arguments + (argumentCount > 0 ? 1 : 0), arguments + argumentCount});
    }
    catch (const std::exception &error)
    {
        std::fprintf(stderr, "zerb: %s\n", error.what());
        return failed;
    }
}
