// The command-line host: finds the command, reads its arguments, loads the plug-in and lets the command work.
//
// Exit status: 0 all done, 1 something failed, 2 wrong usage.
#include "host/command.h"
#include "host/default_directory.h"
#include "host/program_help.h"
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

host::Plugin readyPlugin()
{
    if (const char *problem = standin::environmentProblem())
        throw std::runtime_error(host::printable(problem));
    host::Plugin plugin = host::loadPlugin();
    host::takeDefaultDirectoryFromEnvironment(plugin);
    return plugin;
}

int work(const host::Command &command, const host::Action &action)
{
    const host::Plugin plugin = command.needsPlugin ? readyPlugin() : host::Plugin{};
    host::Report report(command.name);
    host::Invocation invocation{plugin, report};
    action(invocation);
    if (const char *missing = standin::missingPart())
        std::fprintf(stderr, "zerb: %s\n", host::printable(missing).c_str());
    return finish(report.anyFailure());
}

int runCommand(const host::Command &command, const std::vector<std::string> &words)
{
    const std::string fullName = host::fullNameOf(command);
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
        std::fputs(host::programHelp(host::allArgumentLists()).c_str(), stdout);
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
