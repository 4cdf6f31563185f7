// zerb cd: a program with another default directory.
//
// The default directory belongs to a process and ends with it. What is handed on is the environment variable ZERB_DEFAULT_DIRECTORY, by which each zerb
// sets its own when it starts (host/default_directory.h).
#include "host/commands.h"

#include "host/default_directory.h"
#include "host/text.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unistd.h>

namespace host
{

namespace
{

struct Options
{
    std::string folder;
    Words command;
    bool script = false;
};

// A word for a shell, whatever bytes it has.
std::string quoted(const std::string &text)
{
    std::string word = "'";
    for (const char c : text)
        word += c == '\'' ? "'\\''" : std::string(1, c);
    return word + "'";
}

void showDefault(Invocation &invocation)
{
    FSRef root, directory;
    std::string path;
    OSStatus result = findObject("/", Links::follow, root);
    if (result == noErr)
        result = invocation.plugin.FSSetDefault(&root, &directory);
    if (result == noErr)
        result = invocation.plugin.FSRestoreDefault(&directory);
    if (result == noErr)
        result = pathOfObject(directory, path);
    if (result != noErr)
        return invocation.report.failure("default directory", result);
    std::printf("%s\n", printable(path).c_str());
}

std::string shell()
{
    const char *named = std::getenv("SHELL");
    return named && *named ? named : "/bin/sh";
}

// Comes back only if the program could not be started.
void runInstead(Invocation &invocation, const Words &command)
{
    std::vector<char *> words;
    for (const std::string &word : command)
        words.push_back(const_cast<char *>(word.c_str()));
    words.push_back(nullptr);
    std::fflush(stdout);
    execvp(words[0], words.data());
    invocation.report.problem(command[0], std::string("cannot be started: ") + std::strerror(errno));
}

void work(Invocation &invocation, const Options &options)
{
    FSRef previous;
    std::string path;
    if (options.folder.empty())
        return showDefault(invocation);
    if (OSStatus result = setDefaultDirectory(invocation.plugin, options.folder, previous, path))
        return invocation.report.failure(options.folder, result, "making it the default directory");
    const std::string linuxPath = linuxPathOf(path);
    if (options.script)
    {
        std::printf("cd -- %s && export %s=%s\n", quoted(linuxPath).c_str(), defaultDirectoryVariable, quoted(path).c_str());
        return;
    }
    if (chdir(linuxPath.c_str()) != 0)
        return invocation.report.problem(options.folder, "cannot become the working directory: " + linuxPath + ": " + std::strerror(errno));
    setenv(defaultDirectoryVariable, path.c_str(), 1);
    setenv("PWD", linuxPath.c_str(), 1);
    runInstead(invocation, options.command.empty() ? Words{shell()} : options.command);
}

void checkWords(const Options &options)
{
    if (options.script && (options.folder.empty() || !options.command.empty()))
        throw UsageError("--script wants a folder and no command");
}

Action declareCd(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.optionalPath("FOLDER", options->folder, "the folder; without it the default directory is shown");
    arguments.optionalPaths("COMMAND", options->command, "a program with its arguments, behind --; without one your shell ($SHELL)");
    arguments.flag("--script", options->script, "print lines for a shell instead, for `eval`");
    arguments.finalCheck([options] { checkWords(*options); });
    return [options](Invocation &invocation) { work(invocation, *options); };
}

}   // namespace

const Command cdCommand = {
    "cd",
    "Run a program with another default directory",
    "The program finds FOLDER as its working directory on Linux, and each zerb that it runs as its default directory, which\n"
    "is what older Macintosh software means by a name without a place. The exit status is the program's. It is the folder,\n"
    "not its name, that counts for each of them, and nothing outside the program changes.\n",
    "  zerb cd Work -- zerb ls -l .\n"
    "  zerb cd Work -- make install\n"
    "  zerb cd Work\n"
    "  zerb cd\n"
    "  eval \"$(zerb cd --script Work)\"\n",
    declareCd,
};

}   // namespace host
