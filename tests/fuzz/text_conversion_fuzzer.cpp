// Hostile text through the converters, both ways: counts that agree with what was written, nothing past the output's end, and text that
// converted strictly comes back as the same text.
#include "platform/platform.h"
#include "standin/text/unicode_forms.h"
#include "tests/fuzz/require.h"

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace
{

// The output is exactly as large as it is said to be, so that the sanitizer sees a byte more.
struct Conversion
{
    OSStatus status = noErr;
    ByteCount read = 0, written = 0;
    std::vector<unsigned char> output;
};

Conversion textOf(const UnicodeMapping &mapping, std::u16string_view unicode, OptionBits flags, std::size_t capacity)
{
    Conversion made;
    made.output.resize(capacity);
    const std::vector<UniChar> input(unicode.begin(), unicode.end());
    UnicodeToTextInfo converter = nullptr;
    require(CreateUnicodeToTextInfo(&mapping, &converter) == noErr);
    made.status =
        ConvertFromUnicodeToText(converter, static_cast<ByteCount>(input.size() * sizeof(UniChar)), input.data(), flags, 0, nullptr,
                                 nullptr, nullptr, static_cast<ByteCount>(capacity), &made.read, &made.written, made.output.data());
    require(DisposeUnicodeToTextInfo(&converter) == noErr);
    require(made.read <= input.size() * sizeof(UniChar) && made.read % sizeof(UniChar) == 0 && made.written <= capacity);
    return made;
}

Conversion unicodeOf(const UnicodeMapping &mapping, std::string_view text, OptionBits flags, std::size_t capacity)
{
    Conversion made;
    made.output.resize(capacity);
    TextToUnicodeInfo converter = nullptr;
    require(CreateTextToUnicodeInfo(&mapping, &converter) == noErr);
    made.status = ConvertFromTextToUnicode(converter, static_cast<ByteCount>(text.size()), text.data(), flags, 0, nullptr, nullptr, nullptr,
                                           static_cast<ByteCount>(capacity), &made.read, &made.written,
                                           reinterpret_cast<UniChar *>(made.output.data()));
    require(DisposeTextToUnicodeInfo(&converter) == noErr);
    require(made.read <= text.size() && made.written <= capacity && made.written % sizeof(UniChar) == 0);
    return made;
}

std::u16string unitsIn(const Conversion &made)
{
    std::u16string units(made.written / sizeof(char16_t), u'\0');
    if (!units.empty())
        std::memcpy(units.data(), made.output.data(), made.written);
    return units;
}

std::string_view bytesIn(const Conversion &made)
{
    return {reinterpret_cast<const char *>(made.output.data()), made.written};
}

constexpr OptionBits fallbacks = kUnicodeUseFallbacksMask;
constexpr std::size_t roomForEachUnit = 8, roomForEachByte = 16;   // bytes; more than any conversion takes

void checkCounts(const Conversion &made, std::size_t inputLength, OptionBits flags)
{
    const bool isDone = made.status == noErr || (made.status == kTECUsedFallbacksStatus && (flags & fallbacks));
    require(isDone == (made.read == inputLength));
    require(isDone || made.status == kTECOutputBufferFullStatus || made.status == kTECUnmappableElementErr ||
            made.status == kTECPartialCharErr || made.status == kTextMalformedInputErr);
}

void checkFromUnicode(const UnicodeMapping &mapping, const std::u16string &unicode, OptionBits flags, std::size_t capacity)
{
    const Conversion made = textOf(mapping, unicode, flags, capacity);
    checkCounts(made, unicode.size() * 2, flags);
    const std::u16string taken = unicode.substr(0, made.read / 2);
    const Conversion again = textOf(mapping, taken, flags, taken.size() * roomForEachUnit);
    require(again.read == made.read && bytesIn(again) == bytesIn(made));
    if (flags != 0)
        return;
    const Conversion back = unicodeOf(mapping, bytesIn(made), 0, made.written * roomForEachByte);
    require(back.status == noErr && standin::decomposed(unitsIn(back)) == standin::decomposed(taken));
}

void checkFromText(const UnicodeMapping &mapping, const std::string &text, OptionBits flags, std::size_t capacity)
{
    const Conversion made = unicodeOf(mapping, text, flags, capacity);
    checkCounts(made, text.size(), flags);
    const std::string taken = text.substr(0, made.read);
    const Conversion again = unicodeOf(mapping, taken, flags, taken.size() * roomForEachByte);
    require(again.read == made.read && unitsIn(again) == unitsIn(made));
    if (made.status == kTECUsedFallbacksStatus || (flags & fallbacks))
        return;
    const Conversion back = textOf(mapping, unitsIn(made), 0, taken.size() * roomForEachUnit);
    require(back.status == noErr && back.read == made.written);
}

constexpr TextEncoding encodings[] = {0, 1, 2, 3, 4, 5, 6, 7, 21, 25, 29, 35, 36, 37, 38, 0x8C, 0x98, 0x0201, 0x0500, 0x0600};
constexpr std::size_t headerSize = 3;

}   // namespace

// Encoding, flags and form, capacity; then the text.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    if (size < headerSize)
        return 0;
    const UnicodeMapping mapping{CreateTextEncoding(0x0103, data[1] & 0x80 ? 0 : 2, 0), encodings[data[0] % std::size(encodings)], 4};
    const OptionBits flags = data[1] & (kUnicodeUseFallbacksMask | kUnicodeLooseMappingsMask);
    const std::string text(reinterpret_cast<const char *>(data + headerSize), size - headerSize);
    std::u16string unicode(text.size() / 2, u'\0');
    if (!unicode.empty())
        std::memcpy(unicode.data(), text.data(), unicode.size() * 2);
    checkFromUnicode(mapping, unicode, flags, data[2]);
    checkFromText(mapping, text, flags, data[2]);
    return 0;
}
