// The limits of a conversion: every length of the output, missing and odd arguments, converters that are closed.
#include "tests/standin/conversions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace
{

using namespace support;

constexpr TextEncoding roman = 0, japanese = 1;
constexpr OptionBits loose = kUnicodeLooseMappingsMask;

// ---- buffers ----

const std::string mixedText = "Resum \x93\xFA\x96\x7B\x82\xAA \xB6.txt";

TEST(Buffers, OfEveryLengthHoldWholeLettersOfUnicode)
{
    const std::u16string whole = toUnicode(japanese, mixedText).unicode;
    ASSERT_EQ(whole, u"Resum \u65E5\u672C\u304B\u3099 \uFF76.txt");
    for (std::size_t capacity = 0; capacity <= whole.size() * 2 + 3; ++capacity)
    {
        const UnicodeResult result = toUnicode(japanese, mixedText, decomposedForm, 0, capacity);
        std::size_t fits = std::min(capacity / 2, whole.size());
        if (fits < whole.size() && whole[fits] == 0x3099)
            --fits;
        EXPECT_EQ(result.unicode, whole.substr(0, fits)) << capacity;
        EXPECT_EQ(result.status, fits == whole.size() ? noErr : kTECOutputBufferFullStatus) << capacity;
        EXPECT_EQ(toUnicode(japanese, mixedText.substr(0, result.read)), (UnicodeResult{noErr, result.read, result.unicode})) << capacity;
    }
}

TEST(Buffers, OfEveryLengthHoldWholeCodesOfText)
{
    const std::u16string unicode = u"a\u65E5\u672C\u304B\u3099 \uFF76.txt";
    const std::string whole = toText(japanese, unicode).text;
    ASSERT_EQ(whole, "a\x93\xFA\x96\x7B\x82\xAA \xB6.txt");
    // Ends of letters and codes: a conversion may stop nowhere else.
    const std::vector<std::size_t> ends = {0, 1, 3, 5, 7, 8, 9, 10, 11, 12, 13};
    const std::vector<std::size_t> unitsRead = {0, 1, 2, 3, 5, 6, 7, 8, 9, 10, 11};
    for (std::size_t capacity = 0; capacity <= whole.size() + 3; ++capacity)
    {
        const TextResult result = toText(japanese, unicode, 0, capacity);
        const auto end = std::upper_bound(ends.begin(), ends.end(), capacity) - 1;
        EXPECT_EQ(result.text, whole.substr(0, *end)) << capacity;
        EXPECT_EQ(result.read, 2 * unitsRead[static_cast<std::size_t>(end - ends.begin())]) << capacity;
        EXPECT_EQ(result.status, *end == whole.size() ? noErr : kTECOutputBufferFullStatus) << capacity;
    }
}

// The two lengths that a name may have: 31 bytes for a file, 27 for a volume.
TEST(Buffers, ForNamesHoldAsManyBytesAsTheNameMayHave)
{
    for (std::size_t capacity : {27u, 31u})
    {
        EXPECT_EQ(toText(roman, std::u16string(capacity, u'n'), loose, capacity),
                  (TextResult{noErr, capacity * 2, std::string(capacity, 'n')}));
        EXPECT_EQ(toText(roman, std::u16string(capacity + 1, u'n'), loose, capacity),
                  (TextResult{kTECOutputBufferFullStatus, capacity * 2, std::string(capacity, 'n')}));
        const std::u16string accents = std::u16string(capacity - 1, u'n') + u"e\u0301";
        EXPECT_EQ(toText(roman, accents, loose, capacity), (TextResult{noErr, capacity * 2 + 2, std::string(capacity - 1, 'n') + "\x8E"}));
        const std::u16string wide = std::u16string(capacity - 1, u'n') + u"\u65E5";
        EXPECT_EQ(toText(japanese, wide, loose, capacity),
                  (TextResult{kTECOutputBufferFullStatus, capacity * 2 - 2, std::string(capacity - 1, 'n')}));
    }
}

TEST(Buffers, OfANameHold255UnitsOfUnicode)
{
    EXPECT_EQ(toUnicode(roman, std::string(255, 'n'), decomposedForm, 0, 510), (UnicodeResult{noErr, 255, std::u16string(255, u'n')}));
    const UnicodeResult accents = toUnicode(roman, std::string(255, '\x8E'), decomposedForm, 0, 510);
    EXPECT_EQ(accents.status, kTECOutputBufferFullStatus);
    EXPECT_EQ(accents.read, 127u);
    EXPECT_EQ(accents.unicode.size(), 254u);
}

// ---- arguments ----

class Arguments : public testing::Test
{
protected:
    void SetUp() override
    {
        const UnicodeMapping mapping = mappingOf(roman);
        ASSERT_EQ(CreateUnicodeToTextInfo(&mapping, &fromUnicode), noErr);
        ASSERT_EQ(CreateTextToUnicodeInfo(&mapping, &fromText), noErr);
    }
    void TearDown() override
    {
        EXPECT_EQ(DisposeUnicodeToTextInfo(&fromUnicode), noErr);
        EXPECT_EQ(DisposeTextToUnicodeInfo(&fromText), noErr);
    }

    UnicodeToTextInfo fromUnicode = nullptr;
    TextToUnicodeInfo fromText = nullptr;
    UniChar unicode[4] = {'a', 'b', 0, 0};
    char text[4] = {'a', 'b', 0, 0};
    ByteCount read = 77, written = 77;
};

TEST_F(Arguments, ThatAreMissingAreRefused)
{
    EXPECT_EQ(ConvertFromUnicodeToText(fromUnicode, 4, nullptr, 0, 0, nullptr, nullptr, nullptr, 4, &read, &written, text), paramErr);
    EXPECT_EQ(read, 0u);
    EXPECT_EQ(written, 0u);
    EXPECT_EQ(ConvertFromUnicodeToText(fromUnicode, 4, unicode, 0, 0, nullptr, nullptr, nullptr, 4, &read, &written, nullptr), paramErr);
    EXPECT_EQ(ConvertFromUnicodeToText(fromUnicode, 4, unicode, 0, 0, nullptr, nullptr, nullptr, 4, nullptr, &written, text), paramErr);
    EXPECT_EQ(ConvertFromUnicodeToText(fromUnicode, 4, unicode, 0, 0, nullptr, nullptr, nullptr, 4, &read, nullptr, text), paramErr);
    EXPECT_EQ(ConvertFromUnicodeToText(nullptr, 4, unicode, 0, 0, nullptr, nullptr, nullptr, 4, &read, &written, text), paramErr);
    EXPECT_EQ(ConvertFromTextToUnicode(fromText, 2, nullptr, 0, 0, nullptr, nullptr, nullptr, 8, &read, &written, unicode), paramErr);
    EXPECT_EQ(ConvertFromTextToUnicode(fromText, 2, text, 0, 0, nullptr, nullptr, nullptr, 8, &read, &written, nullptr), paramErr);
    EXPECT_EQ(ConvertFromTextToUnicode(fromText, 2, text, 0, 0, nullptr, nullptr, nullptr, 8, nullptr, &written, unicode), paramErr);
    EXPECT_EQ(ConvertFromTextToUnicode(fromText, 2, text, 0, 0, nullptr, nullptr, nullptr, 8, &read, nullptr, unicode), paramErr);
    EXPECT_EQ(ConvertFromTextToUnicode(nullptr, 2, text, 0, 0, nullptr, nullptr, nullptr, 8, &read, &written, unicode), paramErr);
    EXPECT_EQ(unicode[0], 'a');
    EXPECT_EQ(text[0], 'a');
}

TEST_F(Arguments, MayBeNullWhereNothingIsReadOrWritten)
{
    EXPECT_EQ(ConvertFromUnicodeToText(fromUnicode, 0, nullptr, 0, 0, nullptr, nullptr, nullptr, 0, &read, &written, nullptr), noErr);
    EXPECT_EQ(read + written, 0u);
    EXPECT_EQ(ConvertFromTextToUnicode(fromText, 0, nullptr, 0, 0, nullptr, nullptr, nullptr, 0, &read, &written, nullptr), noErr);
    EXPECT_EQ(ConvertFromUnicodeToText(fromUnicode, 4, unicode, 0, 0, nullptr, nullptr, nullptr, 0, &read, &written, nullptr),
              kTECOutputBufferFullStatus);
    EXPECT_EQ(ConvertFromTextToUnicode(fromText, 2, text, 0, 0, nullptr, nullptr, nullptr, 1, &read, &written, unicode),
              kTECOutputBufferFullStatus);
    EXPECT_EQ(read + written, 0u);
}

TEST_F(Arguments, WithOffsetsAreRefused)
{
    const ByteOffset offsets[] = {0, 2};
    ByteOffset found[2];
    ItemCount count = 77;
    EXPECT_EQ(ConvertFromUnicodeToText(fromUnicode, 4, unicode, 0, 2, offsets, &count, found, 4, &read, &written, text), paramErr);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(ConvertFromTextToUnicode(fromText, 2, text, 0, 2, offsets, &count, found, 8, &read, &written, unicode), paramErr);
    EXPECT_EQ(ConvertFromUnicodeToText(fromUnicode, 4, unicode, 0, 0, offsets, &count, found, 4, &read, &written, text), noErr);
    EXPECT_EQ(count, 0u);
}

TEST_F(Arguments, AnOddLengthEndsInHalfAUnit)
{
    EXPECT_EQ(ConvertFromUnicodeToText(fromUnicode, 3, unicode, 0, 0, nullptr, nullptr, nullptr, 4, &read, &written, text),
              kTextMalformedInputErr);
    EXPECT_EQ(read, 2u);
    EXPECT_EQ(written, 1u);
    EXPECT_EQ(ConvertFromUnicodeToText(fromUnicode, 3, unicode, 0, 0, nullptr, nullptr, nullptr, 0, &read, &written, text),
              kTECOutputBufferFullStatus);
    EXPECT_EQ(ConvertFromUnicodeToText(fromUnicode, 1, unicode, 0, 0, nullptr, nullptr, nullptr, 4, &read, &written, text),
              kTextMalformedInputErr);
    EXPECT_EQ(read + written, 0u);
}

TEST_F(Arguments, UnicodeMayLieAnywhereInMemory)
{
    std::vector<char> bytes(5);
    std::memcpy(bytes.data() + 1, unicode, 4);
    EXPECT_EQ(ConvertFromUnicodeToText(fromUnicode, 4, reinterpret_cast<const UniChar *>(bytes.data() + 1), 0, 0, nullptr, nullptr, nullptr,
                                       4, &read, &written, text),
              noErr);
    EXPECT_EQ(written, 2u);
}

TEST(Converters, ThatAreClosedOrWildAreRefused)
{
    const UnicodeMapping mapping = mappingOf(roman);
    UnicodeToTextInfo fromUnicode = nullptr;
    TextToUnicodeInfo fromText = nullptr;
    ASSERT_EQ(CreateUnicodeToTextInfo(&mapping, &fromUnicode), noErr);
    ASSERT_EQ(CreateTextToUnicodeInfo(&mapping, &fromText), noErr);
    UnicodeToTextInfo closed = fromUnicode;
    TextToUnicodeInfo closedToo = fromText;
    EXPECT_EQ(DisposeUnicodeToTextInfo(&fromUnicode), noErr);
    EXPECT_EQ(DisposeTextToUnicodeInfo(&fromText), noErr);
    EXPECT_EQ(fromUnicode, nullptr);
    EXPECT_EQ(fromText, nullptr);
    for (int attempt = 0; attempt < 2; ++attempt)
    {
        EXPECT_EQ(DisposeUnicodeToTextInfo(&fromUnicode), paramErr);
        EXPECT_EQ(DisposeTextToUnicodeInfo(&fromText), paramErr);
        EXPECT_EQ(DisposeUnicodeToTextInfo(&closed), paramErr);
        EXPECT_EQ(DisposeTextToUnicodeInfo(&closedToo), paramErr);
    }
    EXPECT_EQ(DisposeUnicodeToTextInfo(nullptr), paramErr);
    EXPECT_EQ(DisposeTextToUnicodeInfo(nullptr), paramErr);
    UniChar unicode = 'a';
    char text = 'a';
    ByteCount read = 0, written = 0;
    EXPECT_EQ(ConvertFromUnicodeToText(closed, 2, &unicode, 0, 0, nullptr, nullptr, nullptr, 1, &read, &written, &text), paramErr);
    EXPECT_EQ(ConvertFromTextToUnicode(closedToo, 1, &text, 0, 0, nullptr, nullptr, nullptr, 2, &read, &written, &unicode), paramErr);
}

TEST(Converters, NeedAMappingAndAPlace)
{
    const UnicodeMapping mapping = mappingOf(roman);
    UnicodeToTextInfo fromUnicode = nullptr;
    TextToUnicodeInfo fromText = nullptr;
    EXPECT_EQ(CreateUnicodeToTextInfo(nullptr, &fromUnicode), paramErr);
    EXPECT_EQ(CreateUnicodeToTextInfo(&mapping, nullptr), paramErr);
    EXPECT_EQ(CreateTextToUnicodeInfo(nullptr, &fromText), paramErr);
    EXPECT_EQ(CreateTextToUnicodeInfo(&mapping, nullptr), paramErr);
    EXPECT_EQ(fromUnicode, nullptr);
    EXPECT_EQ(fromText, nullptr);
}

}   // namespace
