// zerb forks export, zerb forks import: forks to and from files of Linux.
#include "host/commands/fork_bytes.h"

#include "host/commands/output_file.h"
#include "host/commands/temporary_objects.h"
#include "host/text.h"

#include "platform/files.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace host
{

namespace
{

struct Options
{
    std::string path;
    std::string other;   // the file of Linux
    ForkKind kind = ForkKind::data;
    bool inPlace = false;
    ProgressWish progress;
};

void declareFiles(Arguments &arguments, Options &options, const char *optionName, const std::string &description)
{
    arguments.path("FILE", options.path, "a file; what a symbolic link leads to");
    arguments
        .text(
            optionName, "LINUXFILE", [&options](const std::string &typed) { options.other = typed; }, description)
        .require();
    addForkOption(arguments, options.kind);
    arguments.progress(options.progress);
}

// ---------------------------------------------------------------------------------------------------------------------
// export

void exportFork(Invocation &invocation, const Options &options)
{
    ForkedFile file;
    OpenedFork fork;
    OutputFile output;
    if (findForkedFile(invocation, options.path, file) != noErr)
        return;
    std::string step = "reading the " + std::string(nameOfFork(options.kind));
    if (OSErr result = fork.open(file.ref, options.kind, fsRdPerm))
        return invocation.report.failure(options.path, result, step);
    if (!output.open(options.other))
        return invocation.report.problem(options.other, whyNoOutput(errno));
    CopyBuffer buffer(invocation.plugin);
    UInt64 size = file.sizeOf(options.kind);
    Progress progress(progressStyle(options.progress), "exporting", ProgressUnit::bytes, size);
    bool isWritten = true;
    OSErr result = readFork(fork.number(), 0, size, buffer, [&](std::span<const char> bytes) {
        isWritten = output.write(bytes);
        progress.advance(bytes.size());
        return isWritten;
    });
    progress.clear();
    if (result != noErr)
        return invocation.report.failure(options.path, result, step);
    if (!isWritten || !output.finish())
        invocation.report.problem(options.other, std::strerror(errno));
}

Action declareExport(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    declareFiles(arguments, *options, "--to", "the file of Linux to make, or - for the standard output");
    return [options](Invocation &invocation) { exportFork(invocation, *options); };
}

// ---------------------------------------------------------------------------------------------------------------------
// import

struct InputError : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// The bytes to import. What goes wrong is thrown as InputError.
class InputFile
{
public:
    explicit InputFile(const std::string &name)
        : file_(name == standardStream ? dup(STDIN_FILENO) : ::open(name.c_str(), O_RDONLY | O_CLOEXEC))
    {
        struct stat status;
        if (file_ < 0 || fstat(file_, &status) != 0)
            fail();
        if (S_ISREG(status.st_mode))
            size_ = static_cast<UInt64>(status.st_size);
    }
    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;
    ~InputFile() { ::close(file_); }

    std::optional<UInt64> size() const { return size_; }   // where it can be known beforehand

    // 0 at the end.
    UInt32 read(const CopyBuffer &buffer)
    {
        ssize_t count = 0;
        do
            count = ::read(file_, buffer.bytes(), buffer.size());
        while (count < 0 && errno == EINTR);
        if (count < 0)
            fail();
        return static_cast<UInt32>(count);
    }

private:
    [[noreturn]] static void fail() { throw InputError(std::strerror(errno)); }

    int file_;
    std::optional<UInt64> size_;
};

// Room for all of it is made first, where it is known how much there is.
OSErr writeFork(OpenedFork &fork, InputFile &input, const CopyBuffer &buffer, Progress &progress)
{
    OSErr result = FSSetForkSize(fork.number(), fsFromStart, static_cast<SInt64>(input.size().value_or(0)));
    SInt64 written = 0;
    while (result == noErr)
    {
        UInt32 count = input.read(buffer);
        if (count == 0)
            return FSSetForkSize(fork.number(), fsFromStart, written);
        ByteCount actual = 0;
        result = FSWriteFork(fork.number(), fsAtMark + noCacheMask, 0, count, buffer.bytes(), &actual);
        written += actual;
        progress.advance(actual);
    }
    return result;
}

OSErr fillFork(const Plugin &plugin, const FSRef &file, InputFile &input, const Options &options)
{
    OpenedFork fork;
    CopyBuffer buffer(plugin);
    Progress progress(progressStyle(options.progress), "importing", ProgressUnit::bytes, input.size());
    OSErr result = fork.open(file, options.kind, fsRdWrPerm);
    if (result == noErr)
        result = writeFork(fork, input, buffer, progress);
    OSErr closing = fork.close();
    return result != noErr ? result : closing;
}

ForkKind otherThan(ForkKind kind)
{
    return kind == ForkKind::data ? ForkKind::resource : ForkKind::data;
}

// A second file gets the new fork, and the other one from the first; then they change places. References stay with the places.
OSErr replaceFork(const Plugin &plugin, const ForkedFile &file, InputFile &input, const Options &options)
{
    FSRef folder;
    TemporaryObject temporary;
    OSErr result = plugin.FSCheckLock(&file.ref);
    if (result == noErr)
        result = plugin.FSGetParentRef(&file.ref, &folder);
    if (result == noErr)
        result = temporary.makeFile(folder);
    if (result == noErr)
        result = copyFork(plugin, file, {temporary.ref()}, otherThan(options.kind), CopyBuffer(plugin));
    if (result == noErr)
        result = fillFork(plugin, temporary.ref(), input, options);
    return result == noErr ? FSExchangeObjects(&file.ref, &temporary.ref()) : result;
}

void importFork(Invocation &invocation, const Options &options)
{
    ForkedFile file;
    if (findForkedFile(invocation, options.path, file) != noErr)
        return;
    try
    {
        InputFile input(options.other);
        OSErr result =
            options.inPlace ? fillFork(invocation.plugin, file.ref, input, options) : replaceFork(invocation.plugin, file, input, options);
        if (result == noErr)
            return;
        invocation.report.failure(options.path, result, "replacing the " + std::string(nameOfFork(options.kind)));
        if (!options.inPlace && (result == paramErr || result == afpAccessDenied || result == permErr))
            invocation.report.remark(options.path,
                                     "cannot be exchanged for a new file, as one with several names or on a volume without that "
                                     "service; --in-place writes into it");
    }
    catch (const InputError &error)
    {
        invocation.report.problem(options.other, error.what());
    }
}

Action declareImport(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    declareFiles(arguments, *options, "--from", "the file of Linux to read, or - for the standard input");
    arguments.flag("--in-place", options->inPlace, "write into the file itself; a failure on the way leaves it partly written");
    return [options](Invocation &invocation) { importFork(invocation, *options); };
}

}   // namespace

const Part forksExportPart = {
    "export",
    "Save a fork as a file of Linux",
    "LINUXFILE is a path of Linux, also where a folder serves as the startup volume. It must not be there yet, and is\n"
    "taken away again if not all of it could be written.\n",
    "  zerb forks export --resource Letter --to Letter.rsrc\n"
    "  zerb forks export Letter --to - | wc -c\n",
    declareExport,
};

const Part forksImportPart = {
    "import",
    "Replace a fork by the bytes of a file of Linux",
    "The new fork is written into a new file beside FILE, named zerb-NUMBER, together with a copy of the other fork;\n"
    "then the two change places at once and the old one is deleted. Until then FILE is as it was, whatever happens.\n"
    "Type, flags, owner and mode stay. LINUXFILE is a path of Linux, also where a folder serves as the startup volume.\n",
    "  zerb forks import --resource Letter --from Letter.rsrc\n"
    "  printf 'Dear Ada' | zerb forks import Letter --from -\n",
    declareImport,
};

}   // namespace host
