// zerb rsrc make: a resource file out of a description.
#include "host/commands/rsrc_parts.h"

#include "host/commands/fork_bytes.h"
#include "host/commands/output_file.h"
#include "host/resource_description.h"
#include "host/text.h"

#include "platform/files.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <unistd.h>

namespace host
{

namespace
{

struct Options
{
    std::string description, path;
    bool isFork = false, replaces = false;
};

// False if it cannot be read, errno tells.
bool readDescription(const std::string &name, std::string &text)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(
        name == standardStream ? fdopen(dup(STDIN_FILENO), "rb") : std::fopen(name.c_str(), "rb"), std::fclose);
    char piece[4096];
    while (file && !std::feof(file.get()) && !std::ferror(file.get()))
        text.append(piece, std::fread(piece, 1, sizeof piece, file.get()));
    return file && !std::ferror(file.get());
}

// A file that is there is replaced only by one that was written whole.
void writeLinuxFile(Invocation &invocation, const Options &options, const std::string &bytes)
{
    const bool isReplacement = options.replaces && options.path != standardStream;
    const std::string name = isReplacement ? options.path + ".new-" + std::to_string(getpid()) : options.path;
    OutputFile output;
    if (!output.open(name))
        return invocation.report.problem(options.path, errno == EEXIST ? whyNoOutput(errno) + "; --replace does" : std::strerror(errno));
    if (!output.write(bytes) || !output.finish())
        return invocation.report.problem(options.path, std::strerror(errno));
    if (!isReplacement || std::rename(name.c_str(), options.path.c_str()) == 0)
        return;
    invocation.report.problem(options.path, std::strerror(errno));
    unlink(name.c_str());
}

OSErr fillFork(OpenedFork &fork, const std::string &bytes)
{
    OSErr result = FSSetForkSize(fork.number(), fsFromStart, static_cast<SInt64>(bytes.size()));
    if (result == noErr)
        result = FSWriteFork(fork.number(), fsFromStart, 0, static_cast<ByteCount>(bytes.size()), bytes.data(), nullptr);
    return result;
}

void writeResourceFork(Invocation &invocation, const std::string &path, const std::string &bytes)
{
    ForkedFile file;
    OpenedFork fork;
    if (findForkedFile(invocation, path, file) != noErr)
        return;
    OSErr result = fork.open(file.ref, ForkKind::resource, fsRdWrPerm);
    if (result == noErr)
        result = fillFork(fork, bytes);
    const OSErr closing = fork.close();
    result = result != noErr ? result : closing;
    if (result != noErr)
        invocation.report.failure(path, result, "writing the resource fork");
}

void make(Invocation &invocation, const Options &options)
{
    std::string text;
    if (!readDescription(options.description, text))
        return invocation.report.problem(options.description, std::strerror(errno));
    try
    {
        const std::string bytes = resourceFileBytes(resourcesFromDescription(text));
        if (options.isFork)
            writeResourceFork(invocation, options.path, bytes);
        else
            writeLinuxFile(invocation, options, bytes);
    }
    catch (const DescriptionError &error)
    {
        invocation.report.problem(options.description, "line " + std::to_string(error.line) + ": " + printable(error.what()));
    }
    catch (const ResourceFileError &error)
    {
        invocation.report.problem(options.description, error.what());
    }
}

Action declareMake(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.path("DESCRIPTION", options->description, "a text file of Linux, or - for the standard input");
    arguments.path("FILE", options->path, "the file of Linux to make, or - for the standard output; with --fork, a file that is there");
    Arguments::Item replace = arguments.flag("--replace", options->replaces, "replace FILE if it is there already");
    arguments.flag("--fork", options->isFork, "write into the resource fork of FILE").excludes(replace);
    return [options](Invocation &invocation) { make(invocation, *options); };
}

}   // namespace

const Part rsrcMakePart = {
    "make",
    "Make a resource file out of a description",
    "The description is a text that docs/resources.md explains: strings, bytes, icons drawn in characters, menus, dialogs\n"
    "and alerts. The result is a bare resource fork in a file of Linux, which every part of `zerb rsrc` reads as it is.\n"
    "With --fork it becomes the resource fork of a file; a failure on the way leaves that partly written.\n",
    "  zerb rsrc make Dialog.txt Dialog.rsrc\n"
    "  zerb rsrc make --replace Dialog.txt Dialog.rsrc\n"
    "  zerb rsrc make --fork Dialog.txt Letter\n",
    declareMake,
};

}   // namespace host
