#include "tests/standin/conversions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace support
{

namespace
{

constexpr unsigned char pattern = 0xA5;

bool isUntouched(const unsigned char *begin, const unsigned char *end)
{
    return std::all_of(begin, end, [](unsigned char byte) { return byte == pattern; });
}

}   // namespace

bool operator==(const TextResult &a, const TextResult &b)
{
    return a.status == b.status && a.read == b.read && a.text == b.text;
}

bool operator==(const UnicodeResult &a, const UnicodeResult &b)
{
    return a.status == b.status && a.read == b.read && a.unicode == b.unicode;
}

void PrintTo(const TextResult &result, std::ostream *stream)
{
    *stream << "status " << result.status << ", read " << result.read << ", " << testing::PrintToString(result.text);
}

void PrintTo(const UnicodeResult &result, std::ostream *stream)
{
    *stream << "status " << result.status << ", read " << result.read << ", " << testing::PrintToString(result.unicode);
}

UnicodeMapping mappingOf(TextEncoding base, UInt32 variant)
{
    return {CreateTextEncoding(0x0103, variant, 0), base, 4};
}

// The output lies at the end of its memory, so that a sanitizer sees what is written past it.
TextResult toText(TextEncoding base, std::u16string_view unicode, OptionBits flags, std::size_t capacity)
{
    const UnicodeMapping mapping = mappingOf(base);
    UnicodeToTextInfo converter = nullptr;
    EXPECT_EQ(CreateUnicodeToTextInfo(&mapping, &converter), noErr);
    const std::vector<UniChar> input(unicode.begin(), unicode.end());
    std::vector<unsigned char> output(capacity, pattern);
    ByteCount read = 77, written = 77;
    const OSStatus status = ConvertFromUnicodeToText(converter, static_cast<ByteCount>(input.size() * 2), input.data(), flags, 0, nullptr,
                                                     nullptr, nullptr, static_cast<ByteCount>(capacity), &read, &written, output.data());
    EXPECT_EQ(DisposeUnicodeToTextInfo(&converter), noErr);
    EXPECT_LE(read, input.size() * 2);
    EXPECT_LE(written, capacity);
    EXPECT_TRUE(isUntouched(output.data() + written, output.data() + capacity));
    return {status, read, std::string(output.begin(), output.begin() + static_cast<std::ptrdiff_t>(written))};
}

UnicodeResult toUnicode(TextEncoding base, std::string_view text, UInt32 variant, OptionBits flags, std::size_t capacity)
{
    const UnicodeMapping mapping = mappingOf(base, variant);
    TextToUnicodeInfo converter = nullptr;
    EXPECT_EQ(CreateTextToUnicodeInfo(&mapping, &converter), noErr);
    std::vector<UniChar> output(capacity / 2 + 1, UniChar{0xA5A5});
    ByteCount read = 77, written = 77;
    const OSStatus status = ConvertFromTextToUnicode(converter, static_cast<ByteCount>(text.size()), text.data(), flags, 0, nullptr,
                                                     nullptr, nullptr, static_cast<ByteCount>(capacity), &read, &written, output.data());
    EXPECT_EQ(DisposeTextToUnicodeInfo(&converter), noErr);
    EXPECT_LE(read, text.size());
    EXPECT_LE(written, capacity);
    EXPECT_EQ(written % 2, 0u);
    const auto *bytes = reinterpret_cast<const unsigned char *>(output.data());
    EXPECT_TRUE(isUntouched(bytes + written, bytes + output.size() * 2));
    return {status, read, std::u16string(output.begin(), output.begin() + written / 2)};
}

}   // namespace support
