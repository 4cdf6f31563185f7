#include "host/commands/fork_bytes.h"

#include "platform/files.h"
#include "platform/memory.h"

#include <algorithm>
#include <stdexcept>

namespace host
{

namespace
{

constexpr UInt32 wantedBufferSize = 1 << 20;

HFSUniStr255 unicodeNameOf(ForkKind kind)
{
    HFSUniStr255 name = {};
    if (kind == ForkKind::data)
        FSGetDataForkName(&name);
    else
        FSGetResourceForkName(&name);
    return name;
}

}   // namespace

const char *nameOfFork(ForkKind kind)
{
    return kind == ForkKind::data ? "data fork" : "resource fork";
}

OSStatus findForkedFile(Invocation &invocation, const std::string &path, ForkedFile &file)
{
    OSStatus result = findObject(path, Links::follow, file.ref);
    if (result == noErr)
        result = invocation.plugin.FSGetForkSizes(&file.ref, &file.dataSize, &file.resourceSize);
    if (result == notAFileErr)
        invocation.report.problem(path, describeResult(result) + ": is a folder; only files have forks");
    else if (result != noErr)
        invocation.report.failure(path, result);
    return result;
}

OSErr OpenedFork::open(const FSRef &file, ForkKind kind, SInt8 permissions)
{
    HFSUniStr255 name = unicodeNameOf(kind);
    SInt16 number = 0;
    OSErr result = FSOpenFork(&file, name.length, name.unicode, permissions, &number);
    if (result == noErr)
        number_ = number;
    return result;
}

OSErr OpenedFork::close()
{
    if (!number_)
        return noErr;
    OSErr result = FSCloseFork(*number_);
    number_.reset();
    return result;
}

CopyBuffer::CopyBuffer(const Plugin &plugin) : bytes_(plugin.GetTempBufferX(wantedBufferSize, &size_))
{
    if (bytes_ == nullptr)
        throw std::runtime_error("there is no memory for copying");
}

CopyBuffer::~CopyBuffer()
{
    DisposePtr(bytes_);
}

OSErr readFork(SInt16 fork, UInt64 start, UInt64 length, const CopyBuffer &buffer, const std::function<bool(std::span<const char>)> &take)
{
    OSErr result = FSSetForkPosition(fork, fsFromStart, static_cast<SInt64>(start));
    for (UInt64 left = length; result == noErr && left > 0;)
    {
        ByteCount got = 0;
        auto wanted = static_cast<ByteCount>(std::min<UInt64>(left, buffer.size()));
        result = FSReadFork(fork, fsAtMark + noCacheMask, 0, wanted, buffer.bytes(), &got);
        left -= got;
        if (got > 0 && !take({buffer.bytes(), got}))
            return noErr;
    }
    return result == eofErr ? OSErr(noErr) : result;
}

OSErr copyFork(const Plugin &plugin, const ForkedFile &from, const ForkedFile &to, ForkKind kind, const CopyBuffer &buffer)
{
    if (from.sizeOf(kind) == 0 && to.sizeOf(kind) == 0)
        return noErr;   // opening a resource fork for writing could leave a trace of it
    OpenedFork source, destination;
    OSErr result = source.open(from.ref, kind, fsRdPerm);
    if (result == noErr)
        result = destination.open(to.ref, kind, fsWrPerm);
    if (result == noErr)
        result = plugin.FSCopyFork(source.number(), destination.number(), buffer.bytes(), buffer.size());
    OSErr closing = destination.close();
    return result != noErr ? result : closing;
}

void addForkOption(Arguments &arguments, ForkKind &kind)
{
    arguments.flag(
        "--resource", [&kind] { kind = ForkKind::resource; }, "the resource fork instead of the data fork");
}

}   // namespace host
