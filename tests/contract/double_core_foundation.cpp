// Strings of Core Foundation. Of the encodings, Mac Roman knows 'é' and '€' beside ASCII, UTF-8 has up to three bytes a
// character, and in any other one each byte is the character of that number.

#include "tests/contract/double_core_foundation.h"

#include "tests/contract/platform_double.h"

#include <cstring>

namespace
{

char16_t fromByte(unsigned char byte, CFStringEncoding encoding)
{
    if (encoding == kCFStringEncodingMacRoman && byte == 0x8E)
        return u'é';
    if (encoding == kCFStringEncodingMacRoman && byte == 0xDB)
        return u'€';
    return byte;
}

std::u16string fromUTF8(const std::string &bytes)
{
    std::u16string units;
    for (std::size_t index = 0; index < bytes.size();)
    {
        const unsigned first = static_cast<unsigned char>(bytes[index]);
        const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : 3;
        unsigned character = length == 1 ? first : length == 2 ? first & 0x1F : first & 0x0F;
        for (std::size_t next = 1; next < length && index + next < bytes.size(); ++next)
            character = character << 6 | (static_cast<unsigned char>(bytes[index + next]) & 0x3F);
        units += static_cast<char16_t>(character);
        index += length;
    }
    return units;
}

std::string toUTF8(const std::u16string &units)
{
    std::string bytes;
    for (const unsigned unit : units)
    {
        if (unit >= 0x800)
            bytes += {static_cast<char>(0xE0 | unit >> 12), static_cast<char>(0x80 | (unit >> 6 & 0x3F))};
        else if (unit >= 0x80)
            bytes += static_cast<char>(0xC0 | unit >> 6);
        bytes += static_cast<char>(unit < 0x80 ? unit : 0x80 | (unit & 0x3F));
    }
    return bytes;
}

std::u16string decoded(const std::string &bytes, CFStringEncoding encoding)
{
    if (encoding == kCFStringEncodingUTF8)
        return fromUTF8(bytes);
    std::u16string units;
    for (const char byte : bytes)
        units += fromByte(static_cast<unsigned char>(byte), encoding);
    return units;
}

std::string describe(CFTypeRef string)
{
    const bool isString = PlatformDouble::current().coreFoundation.find(static_cast<CFStringRef>(string)) != nullptr;
    return isString ? "string" : "no string";
}

}   // namespace

std::u16string *CoreFoundationDouble::find(CFStringRef string)
{
    for (std::u16string &each : strings)
        if (reinterpret_cast<CFStringRef>(&each) == string)
            return &each;
    return nullptr;
}

CFMutableStringRef CFStringCreateMutable(CFAllocatorRef allocator, CFIndex maxLength)
{
    PlatformDouble &platform = PlatformDouble::current();
    if (platform.record("CFStringCreateMutable", {platform.pointer(allocator, "allocator"), decimal(maxLength)}) != noErr)
        return nullptr;
    return reinterpret_cast<CFMutableStringRef>(&platform.coreFoundation.strings.emplace_back());
}

void CFStringAppendPascalString(CFMutableStringRef string, ConstStr255Param text, CFStringEncoding encoding)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("CFStringAppendPascalString", {describe(string), quoted(text), hex(encoding)});
    if (std::u16string *units = platform.coreFoundation.find(string))
        *units += decoded(plainText(text), encoding);
}

void CFStringAppendCString(CFMutableStringRef string, const char *text, CFStringEncoding encoding)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("CFStringAppendCString", {describe(string), std::string("\"") + text + '"', hex(encoding)});
    if (std::u16string *units = platform.coreFoundation.find(string))
        *units += decoded(text, encoding);
}

// A failed one writes nothing.
Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex bufferSize, CFStringEncoding encoding)
{
    PlatformDouble &platform = PlatformDouble::current();
    if (platform.record("CFStringGetCString", {describe(string), platform.pointer(buffer, "buffer"), decimal(bufferSize), hex(encoding)}) !=
        noErr)
        return false;
    const std::u16string *units = platform.coreFoundation.find(string);
    if (units == nullptr)
        return false;
    const std::string utf8 = toUTF8(*units);
    const bool isUTF16 = encoding == kCFStringEncodingUnicode;
    const void *bytes = isUTF16 ? static_cast<const void *>(units->data()) : utf8.c_str();
    const std::size_t size = isUTF16 ? units->size() * sizeof(UniChar) : utf8.size() + 1;
    if (size > static_cast<std::size_t>(bufferSize))
        return false;
    std::memcpy(buffer, bytes, size);
    return true;
}

CFIndex CFStringGetLength(CFStringRef string)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("CFStringGetLength", {describe(string)});
    const std::u16string *units = platform.coreFoundation.find(string);
    return units == nullptr ? 0 : static_cast<CFIndex>(units->size());
}

void CFRelease(CFTypeRef object)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("CFRelease", {describe(object)});
    const std::u16string *released = platform.coreFoundation.find(static_cast<CFStringRef>(object));
    platform.coreFoundation.strings.remove_if([&](const std::u16string &each) { return &each == released; });
}
