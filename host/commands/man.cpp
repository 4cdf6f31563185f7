// zerb man: manual pages, made of what the commands say of themselves.
#include "host/commands.h"

#include "host/manual_page.h"
#include "host/version.h"

#include <cstdio>
#include <fstream>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    const Command *command = nullptr;
    std::string folder;
};

std::string pageOf(const Command *command)
{
    return command != nullptr ? commandPage(argumentListOf(*command), version) : programPage(allArgumentLists(), version);
}

void save(Invocation &invocation, const Options &options, const Command *command)
{
    const std::string path = options.folder + "/zerb" + (command != nullptr ? std::string("-") + command->name : "") + ".1";
    std::ofstream file(path, std::ios::binary);
    file << pageOf(command);
    file.close();
    if (!file)
        invocation.report.problem(path, "cannot be written");
}

void write(Invocation &invocation, const Options &options)
{
    if (options.folder.empty())
        std::fputs(pageOf(options.command).c_str(), stdout);
    else
        save(invocation, options, options.command);
    if (options.folder.empty() || options.command != nullptr)
        return;
    for (const Command *command : allCommands())
        save(invocation, options, command);
}

Action declareMan(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    auto read = [options](const std::string &name) {
        options->command = commandNamed(name);
        if (options->command == nullptr)
            throw UsageError("there is no command \"" + name + "\"");
    };
    arguments.text("COMMAND", "", read, "a command; none: the program as a whole");
    arguments.text(
        "--save", "FOLDER", [options](const std::string &typed) { options->folder = typed; },
        "save the page there under its usual name, and without a COMMAND all pages");
    return [options](Invocation &invocation) { write(invocation, *options); };
}

}   // namespace

const Command manCommand = {
    "man",
    "Write manual pages, as man reads them",
    "An installed zerb has them all: man zerb, man zerb-copy.\n",
    "  zerb man copy | man -l -\n"
    "  zerb man --save ~/.local/share/man/man1\n",
    declareMan,
    false,
};

}   // namespace host
