// Resources as the bytes of a resource file.
#pragma once

#include "platform/types.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace host
{

struct WritableResource
{
    ResType type = 0;
    SInt16 id = 0;
    std::string name;   // in Mac Roman, up to 255 characters; empty for none
    UInt8 attributes = 0;
    std::string bytes;
};

// More than the format can hold.
struct ResourceFileError : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// A whole resource fork. Types stand in the order in which they come first, resources of a type in the order of the list. Throws ResourceFileError.
std::string resourceFileBytes(const std::vector<WritableResource> &resources);

// Big-endian numbers at the end of bytes; of each, the low 8, 16 or 32 bits.
void append8(std::string &bytes, UInt32 value);
void append16(std::string &bytes, UInt32 value);
void append32(std::string &bytes, UInt32 value);

// A length byte and the text, which must not be longer than 255 bytes.
void appendPascal(std::string &bytes, const std::string &text);

}   // namespace host
