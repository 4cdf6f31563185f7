// Core Foundation's strings, as far as paths need them: UTF-16 that grows.
//
// What a caller may count on beyond the declarations:
// - Text that is no text of its encoding is not appended at all, and neither is one that would take a string beyond the length that it was
//   made with (0: no limit), or for which there is no memory. Nothing tells the caller so but the string's length.
// - CFStringGetCString writes the whole text and its terminator, or nothing: after a false the buffer is as it was. UTF-16 has a
//   terminator as far as there is room for one.
// - A C string in UTF-16 ends before its first unit of zero.
// - Null strings, texts and buffers are safe, and so are sizes below zero.
// Strings share nothing: different ones may be used by different threads at once, and one by several as long as none of them appends.
#include "platform/platform.h"
#include "standin/text/string_encodings.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <string_view>

struct OpaqueCFString
{
    std::u16string units;
    std::size_t mostUnits;
};

using namespace standin;

namespace
{

std::size_t lengthOfCString(const char *text, CFStringEncoding encoding)
{
    if (terminatorSize(encoding) == 1)
        return std::strlen(text);
    std::size_t length = 0;
    while (text[length] != '\0' || text[length + 1] != '\0')
        length += sizeof(char16_t);
    return length;
}

void append(OpaqueCFString &string, std::string_view bytes, CFStringEncoding encoding)
try
{
    std::u16string more;
    if (unicodeFromBytes(bytes, encoding, more) && more.size() <= string.mostUnits - string.units.size())
        string.units += more;
}
catch (const std::bad_alloc &)   // nothing is appended
{
}

}   // namespace

CFMutableStringRef CFStringCreateMutable(CFAllocatorRef, CFIndex maxLength)
{
    if (maxLength < 0)
        return nullptr;
    const bool isLimited = maxLength > 0;
    return new (std::nothrow) OpaqueCFString{{}, isLimited ? static_cast<std::size_t>(maxLength) : std::numeric_limits<std::size_t>::max()};
}

void CFStringAppendPascalString(CFMutableStringRef string, ConstStr255Param text, CFStringEncoding encoding)
{
    if (string && text)
        append(*string, {reinterpret_cast<const char *>(text) + 1, text[0]}, encoding);
}

void CFStringAppendCString(CFMutableStringRef string, const char *text, CFStringEncoding encoding)
{
    if (string && text)
        append(*string, {text, lengthOfCString(text, encoding)}, encoding);
}

Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex bufferSize, CFStringEncoding encoding)
try
{
    std::string bytes;
    if (!string || !buffer || bufferSize <= 0 || !bytesFromUnicode(string->units, encoding, bytes))
        return false;
    const auto size = static_cast<std::size_t>(bufferSize);
    const std::size_t terminator = terminatorSize(encoding);
    const std::size_t neededTerminator = terminator == 1 ? 1 : 0;
    if (bytes.size() + neededTerminator > size)
        return false;
    std::copy(bytes.begin(), bytes.end(), buffer);
    std::fill_n(buffer + bytes.size(), std::min(terminator, size - bytes.size()), '\0');
    return true;
}
catch (const std::bad_alloc &)
{
    return false;
}

CFIndex CFStringGetLength(CFStringRef string)
{
    return string ? static_cast<CFIndex>(string->units.size()) : 0;
}

// Nothing but strings is made here, so that is what every object is.
void CFRelease(CFTypeRef object)
{
    delete static_cast<const OpaqueCFString *>(object);
}
