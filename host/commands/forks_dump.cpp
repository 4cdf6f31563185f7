// zerb forks dump: the bytes of a fork, for people or as they are.
#include "host/commands/fork_bytes.h"

#include "host/hexadecimal_lines.h"
#include "host/text.h"

#include "platform/files.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::string path;
    ForkKind kind = ForkKind::data;
    UInt32 start = 0;
    std::optional<UInt32> length;
    bool isRaw = false;
};

// False once the output cannot be written.
bool dumpLines(UInt64 &offset, std::span<const char> bytes)
{
    std::string lines;
    for (std::size_t index = 0; index < bytes.size(); index += bytesOfHexadecimalLine)
        lines += hexadecimalLine(offset + index, bytes.subspan(index));
    offset += bytes.size();
    return std::fwrite(lines.data(), 1, lines.size(), stdout) == lines.size();
}

void dump(Invocation &invocation, const Options &options)
{
    ForkedFile file;
    OpenedFork fork;
    if (findForkedFile(invocation, options.path, file) != noErr)
        return;
    UInt64 size = file.sizeOf(options.kind);
    UInt64 start = std::min<UInt64>(options.start, size);
    UInt64 length = options.length ? std::min<UInt64>(*options.length, size - start) : size - start;
    OSErr result = fork.open(file.ref, options.kind, fsRdPerm);
    if (result == noErr)
    {
        CopyBuffer buffer(invocation.plugin);
        UInt64 offset = start;
        result = readFork(fork.number(), start, length, buffer, [&](std::span<const char> bytes) {
            return options.isRaw ? std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() : dumpLines(offset, bytes);
        });
    }
    if (result != noErr)
        invocation.report.failure(options.path, result, "reading the " + std::string(nameOfFork(options.kind)));
}

Action declareDump(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.path("FILE", options->path, "a file; what a symbolic link leads to");
    addForkOption(arguments, options->kind);
    arguments.number("--start", "OFFSET", options->start, 0xFFFFFFFF, "the first byte to show, counted from 0");
    arguments.number("--length", "COUNT", options->length, 0xFFFFFFFF, "so many bytes at most");
    arguments.flag("--raw", options->isRaw, "the bytes as they are");
    return [options](Invocation &invocation) { dump(invocation, *options); };
}

}   // namespace

const Part forksDumpPart = {
    "dump",
    "Show the bytes of a fork",
    "A line has the offset in hexadecimal, sixteen bytes, and the same as text, where a point stands for what is not\n"
    "plain ASCII.\n",
    "  zerb forks dump Letter\n"
    "  zerb forks dump --resource --start 0x100 --length 256 Letter\n"
    "  zerb forks dump --resource --raw Letter | sha256sum\n",
    declareDump,
};

}   // namespace host
