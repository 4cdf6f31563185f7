#include "host/commands/rsrc_parts.h"

#include "host/four_character_codes.h"
#include "host/text.h"

#include "platform/resources.h"

#include <charconv>

namespace host
{

OpenedResourceFile::~OpenedResourceFile()
{
    if (!number_)
        return;
    CloseResFile(*number_);
    SetResLoad(true);
}

OSStatus OpenedResourceFile::open(Invocation &invocation, const std::string &path)
{
    FSRef ref;
    OSStatus result = findObject(path, Links::follow, ref);
    if (result != noErr)
    {
        invocation.report.failure(path, result);
        return result;
    }
    const SInt16 number = FSOpenResFile(&ref, fsRdPerm);
    result = ResError();
    if (result == noErr)
    {
        number_ = number;
        UseResFile(number);
        SetResLoad(false);
        return noErr;
    }
    invocation.report.failure(path, result, "opening its resources");
    if (result == eofErr)
        invocation.report.remark(
            path, "has no resources: there is nothing in its resource fork, nor one inside its data; `zerb forks list` shows its forks");
    if (result == mapReadErr)
        invocation.report.remark(path, "is no resource file, or a damaged one; `zerb forks dump` shows its bytes");
    return result;
}

OSErr readResourceBytes(Handle resource, std::string &bytes)
{
    const long size = GetResourceSizeOnDisk(resource);
    if (size < 0)
        return ResError();
    bytes.resize(static_cast<std::size_t>(size));
    ReadPartialResource(resource, 0, bytes.data(), size);
    return ResError();
}

ResType resourceTypeFromText(const std::string &typed)
{
    std::string padded = typed;
    if (const auto macRoman = macRomanFromUtf8(typed); macRoman && !macRoman->empty() && macRoman->size() < 4)
        padded.append(4 - macRoman->size(), ' ');
    if (padded.empty())
        throw UsageError("a resource type has one to four characters");
    return codeFromText(padded);
}

SInt16 resourceIDFromText(const std::string &typed)
{
    int id = 0;
    const char *end = typed.data() + typed.size();
    const auto [stopped, failure] = std::from_chars(typed.data(), end, id);
    if (failure != std::errc{} || stopped != end || id < -32768 || id > 32767)
        throw UsageError("an ID is a number from -32768 to 32767, not: " + typed);
    return static_cast<SInt16>(id);
}

}   // namespace host
