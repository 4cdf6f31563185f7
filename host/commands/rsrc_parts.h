// What the parts of `zerb rsrc` share.
#pragma once

#include "host/command.h"
#include "host/commands/parts.h"

#include <optional>
#include <string>

namespace host
{

// A resource file, open as long as this lives. While it is, resources come without their bytes: those are read from the file alone.
class OpenedResourceFile
{
public:
    OpenedResourceFile() = default;
    OpenedResourceFile(const OpenedResourceFile &) = delete;
    OpenedResourceFile &operator=(const OpenedResourceFile &) = delete;
    ~OpenedResourceFile();

    // Finds the file and opens it. A result that is not noErr is reported, with what to do about it.
    OSStatus open(Invocation &invocation, const std::string &path);

private:
    std::optional<SInt16> number_;
};

// The bytes of a resource as they are in the file.
OSErr readResourceBytes(Handle resource, std::string &bytes);

// As codeFromText, but with spaces after fewer than four characters: STR is 'STR '. Throws UsageError.
ResType resourceTypeFromText(const std::string &typed);

// Throws UsageError.
SInt16 resourceIDFromText(const std::string &typed);

extern const Part rsrcDumpPart;
extern const Part rsrcMakePart;

}   // namespace host
