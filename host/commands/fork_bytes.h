// Open forks and their bytes, for the commands that work on them.
#pragma once

#include "host/command.h"
#include "host/commands/parts.h"

#include "platform/file_records.h"

#include <functional>
#include <optional>
#include <span>
#include <string>

namespace host
{

enum class ForkKind
{
    data,
    resource
};

const char *nameOfFork(ForkKind kind);   // "data fork", "resource fork"

// A file with forks: what a path leads to, with the sizes of its forks.
struct ForkedFile
{
    FSRef ref;
    UInt64 dataSize = 0, resourceSize = 0;

    UInt64 sizeOf(ForkKind kind) const { return kind == ForkKind::data ? dataSize : resourceSize; }
};

// Finds the file; a result that is not noErr is reported. Links are followed.
OSStatus findForkedFile(Invocation &invocation, const std::string &path, ForkedFile &file);

class OpenedFork
{
public:
    OpenedFork() = default;
    OpenedFork(const OpenedFork &) = delete;
    OpenedFork &operator=(const OpenedFork &) = delete;
    ~OpenedFork() { close(); }

    OSErr open(const FSRef &file, ForkKind kind, SInt8 permissions);
    OSErr close();   // after writing, its result says whether all of it is there
    SInt16 number() const { return *number_; }

private:
    std::optional<SInt16> number_;
};

// A block from GetTempBufferX.
class CopyBuffer
{
public:
    explicit CopyBuffer(const Plugin &plugin);   // throws std::runtime_error if there is no memory
    CopyBuffer(const CopyBuffer &) = delete;
    CopyBuffer &operator=(const CopyBuffer &) = delete;
    ~CopyBuffer();

    Ptr bytes() const { return bytes_; }
    UInt32 size() const { return size_; }

private:
    UInt32 size_ = 0;   // before the block, whose making writes it
    Ptr bytes_;
};

// Reads so many bytes, or up to the end, piece by piece. `take` returns false to end it. Pieces but for the last one are multiples of 4096 bytes.
OSErr readFork(SInt16 fork, UInt64 start, UInt64 length, const CopyBuffer &buffer, const std::function<bool(std::span<const char>)> &take);

// Copies a whole fork with FSCopyFork; an empty one onto an empty one not at all.
OSErr copyFork(const Plugin &plugin, const ForkedFile &from, const ForkedFile &to, ForkKind kind, const CopyBuffer &buffer);

// --resource, the data fork without it
void addForkOption(Arguments &arguments, ForkKind &kind);

extern const Part forksDumpPart;
extern const Part forksExportPart;
extern const Part forksImportPart;

}   // namespace host
