// Mac Roman, by the platform's converters.
#include "host/text.h"

#include "standin/standin.h"

#include <algorithm>
#include <stdexcept>

namespace host
{

namespace
{

constexpr UnicodeMapping macRoman{0x0100, kTextEncodingMacRoman, -1};   // Unicode as it is, of whatever version

bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

void require(OSStatus result)
{
    if (result != noErr)
        throw std::runtime_error("there is no table for Mac Roman");
}

}   // namespace

std::string utf8FromMacRoman(std::string_view macRomanText)
{
    if (isAscii(macRomanText))
        return std::string(macRomanText);
    TextToUnicodeInfo converter = nullptr;
    ByteCount read = 0, written = 0;
    std::u16string units(macRomanText.size(), u'\0');   // every byte is a character
    require(CreateTextToUnicodeInfo(&macRoman, &converter));
    const OSStatus result = ConvertFromTextToUnicode(converter, static_cast<ByteCount>(macRomanText.size()), macRomanText.data(), 0, 0,
                                                     nullptr, nullptr, nullptr, static_cast<ByteCount>(units.size() * sizeof(UniChar)),
                                                     &read, &written, reinterpret_cast<UniChar *>(units.data()));
    DisposeTextToUnicodeInfo(&converter);
    require(result);
    return bytesFromUnits(units);
}

std::optional<std::string> macRomanFromUtf8(std::string_view text)
{
    if (isAscii(text))
        return std::string(text);
    const std::u16string units = standin::composedText(unitsFromBytes(text));
    UnicodeToTextInfo converter = nullptr;
    ByteCount read = 0, written = 0;
    std::string bytes(units.size(), '\0');
    require(CreateUnicodeToTextInfo(&macRoman, &converter));
    const OSStatus result = ConvertFromUnicodeToText(converter, static_cast<ByteCount>(units.size() * sizeof(UniChar)),
                                                     reinterpret_cast<const UniChar *>(units.data()), 0, 0, nullptr, nullptr, nullptr,
                                                     static_cast<ByteCount>(bytes.size()), &read, &written, bytes.data());
    DisposeUnicodeToTextInfo(&converter);
    if (result != noErr)   // bytes that are no UTF-8 are lone surrogates, which are in no encoding
        return std::nullopt;
    bytes.resize(written);
    return bytes;
}

std::string utf8FromPascal(ConstStr255Param text)
{
    return utf8FromMacRoman({reinterpret_cast<const char *>(text + 1), text[0]});
}

}   // namespace host
