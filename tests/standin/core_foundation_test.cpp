// Core Foundation's strings: bytes of all encodings there and back.
#include "platform/platform.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace
{

constexpr CFStringEncoding utf8 = kCFStringEncodingUTF8, unicode = kCFStringEncodingUnicode, roman = kCFStringEncodingMacRoman;
constexpr CFStringEncoding bigUTF16 = 0x10000100, littleUTF16 = 0x14000100, latin1 = 0x0201, windowsLatin1 = 0x0500, ascii = 0x0600;
constexpr CFStringEncoding japanese = 1, hebrew = 5, cyrillic = 7;

class String
{
public:
    explicit String(CFIndex maxLength = 0) : string_(CFStringCreateMutable(nullptr, maxLength)) {}
    String(const String &) = delete;
    String &operator=(const String &) = delete;
    ~String() { CFRelease(string_); }

    String &append(const std::string &bytes, CFStringEncoding encoding)
    {
        std::string text = bytes + std::string(2, '\0');
        CFStringAppendCString(string_, text.c_str(), encoding);
        return *this;
    }
    String &appendPascal(const std::string &bytes, CFStringEncoding encoding)
    {
        std::vector<unsigned char> text{static_cast<unsigned char>(bytes.size())};
        text.insert(text.end(), bytes.begin(), bytes.end());
        CFStringAppendPascalString(string_, text.data(), encoding);
        return *this;
    }
    CFIndex length() const { return CFStringGetLength(string_); }

    // What a buffer of this size holds afterwards: as many bytes, each 'x' where nothing was written. Empty if the result is false.
    std::string read(CFStringEncoding encoding, std::size_t size) const
    {
        auto buffer = std::make_unique<char[]>(size);   // on the heap, where a sanitizer sees its end
        std::memset(buffer.get(), 'x', size);
        const bool isDone = CFStringGetCString(string_, buffer.get(), static_cast<CFIndex>(size), encoding);
        const std::string bytes(buffer.get(), size);
        if (!isDone)
        {
            EXPECT_EQ(bytes, std::string(size, 'x')) << "written to, although it says false";
        }
        return isDone ? bytes : "";
    }
    std::string bytes(CFStringEncoding encoding) const
    {
        const std::string all = read(encoding, 4096);
        const std::size_t filler = all.find_last_not_of('x');
        return all.empty() || filler == 0 ? all : all.substr(0, filler);   // without its terminator
    }
    CFMutableStringRef ref() const { return string_; }

private:
    CFMutableStringRef string_;
};

struct EncodedText
{
    const char *name;
    CFStringEncoding encoding;
    std::string bytes;
    std::string inUTF8;
};

class EncodedTexts : public testing::TestWithParam<EncodedText>
{
};

TEST_P(EncodedTexts, ComeAsUTF8)
{
    EXPECT_EQ(String().appendPascal(GetParam().bytes, GetParam().encoding).bytes(utf8), GetParam().inUTF8);
    EXPECT_EQ(String().append(GetParam().bytes, GetParam().encoding).bytes(utf8), GetParam().inUTF8);
}

TEST_P(EncodedTexts, AreMadeOfUTF8)
{
    std::string bytes = String().append(GetParam().inUTF8, utf8).bytes(GetParam().encoding);
    if (GetParam().encoding == bigUTF16 || GetParam().encoding == littleUTF16)
        bytes.resize(GetParam().bytes.size());   // half of the terminator
    EXPECT_EQ(bytes, GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Encodings, EncodedTexts,
                         testing::ValuesIn(std::vector<EncodedText>{
                             {"Roman", roman, "R\x8Esum\x8E \xCA\xF0", "Résumé \u00A0\uF8FF"},
                             {"Cyrillic", cyrillic, "\x8F\xE0\xEF\xEA\xE0", "Папка"},
                             {"Japanese", japanese, "\x93\xFA\x96\x7B", "日本"},
                             {"Hebrew", hebrew, "\xF9\xEC\xE5\xED", "שלום"},
                             {"UTF8", utf8, "a\xE2\x82\xAC\xF0\x9F\x98\x80", "a€😀"},
                             {"BigUTF16", bigUTF16, std::string("\x00\x61\x20\xAC", 4), "a€"},
                             {"LittleUTF16", littleUTF16, std::string("\x61\x00\xAC\x20", 4), "a€"},
                             {"Latin1", latin1, "\xE9\xFF", "éÿ"},
                             {"WindowsLatin1", windowsLatin1, "\x80\x9C", "€œ"},
                             {"Ascii", ascii, "Plain ~", "Plain ~"},
                         }),
                         [](const auto &row) { return row.param.name; });

TEST(CoreFoundationStrings, UnicodeIsInTheMachinesOwnByteOrderWithoutAMark)
{
    const char16_t expected[] = u"a€";
    const std::string bytes = String().append("a€", utf8).read(unicode, 4);
    EXPECT_EQ(std::memcmp(bytes.data(), expected, 4), 0);
    EXPECT_EQ(String().appendPascal(bytes, unicode).bytes(utf8), "a€");
}

TEST(CoreFoundationStrings, LengthCountsUnits)
{
    EXPECT_EQ(String().length(), 0);
    EXPECT_EQ(String().append("é", utf8).length(), 1);
    EXPECT_EQ(String().append("😀", utf8).length(), 2);
    EXPECT_EQ(String().append("ab", roman).append("", utf8).append("c", utf8).length(), 3);
}

// 255 units are what a name may have, and 510 bytes what is there for them.
TEST(CoreFoundationStrings, UnicodeMayFillABufferToItsLastByte)
{
    String string;
    string.append(std::string(254, 'n'), utf8);
    EXPECT_EQ(string.read(unicode, 509).size(), 509u) << "508 bytes, and one of a terminator";
    string.append("n", utf8);
    EXPECT_EQ(string.read(unicode, 509), "");
    EXPECT_EQ(string.read(unicode, 510).size(), 510u);
    EXPECT_EQ(string.read(unicode, 511).back(), '\0');
    EXPECT_EQ(string.read(unicode, 513).substr(510), std::string("\0\0x", 3));
    string.append("n", utf8);
    EXPECT_EQ(string.read(unicode, 510), "");
    EXPECT_EQ(string.read(unicode, 511), "");
}

TEST(CoreFoundationStrings, EightBitTextNeedsRoomForItsTerminator)
{
    String string;
    string.append("R\x8Esum\x8E", roman);
    for (const auto &[encoding, size] : {std::pair(roman, 7u), std::pair(utf8, 9u), std::pair(latin1, 7u)})
    {
        EXPECT_EQ(string.read(encoding, size).size(), size) << encoding;
        EXPECT_EQ(string.read(encoding, size).back(), '\0') << encoding;
        EXPECT_EQ(string.read(encoding, size - 1), "") << encoding;
    }
}

TEST(CoreFoundationStrings, BrokenTextIsNotAppendedAtAll)
{
    const std::pair<CFStringEncoding, std::string> broken[] = {
        {utf8, "ab\xFF"},     {utf8, "\xC0\x80"},           {utf8, "\xED\xA0\x80"}, {utf8, "\xE2\x82"}, {utf8, "\xF4\x90\x80\x80"},
        {ascii, "ab\x80"},    {japanese, "a\x93"},          {japanese, "\x93\x20"}, {unicode, "abc"},   {bigUTF16, "a"},
        {0x0C000100, "abcd"}, {0x0BFF, "unknown encoding"}, {0xFFFFFFFF, "abcd"},   {21, "\x83"},
    };
    for (const auto &[encoding, bytes] : broken)
    {
        String string;
        string.append("before", utf8).appendPascal(bytes, encoding);
        EXPECT_EQ(string.bytes(utf8), "before") << encoding << " " << testing::PrintToString(bytes);
    }
}

TEST(CoreFoundationStrings, WhatAnEncodingCannotSayIsRefused)
{
    EXPECT_EQ(String().append("日本", utf8).read(roman, 100), "");
    EXPECT_EQ(String().append("é", utf8).read(ascii, 100), "");
    EXPECT_EQ(String().append("Ā", utf8).read(latin1, 100), "");
    EXPECT_EQ(String().append("a", utf8).read(0x0BFF, 100), "");
    String surrogate;
    surrogate.appendPascal(std::string("\xD8\x00", 2), bigUTF16);
    EXPECT_EQ(surrogate.length(), 1) << "names may hold it";
    EXPECT_EQ(surrogate.read(utf8, 100), "");
    EXPECT_EQ(surrogate.read(bigUTF16, 2), std::string("\xD8\x00", 2));
}

TEST(CoreFoundationStrings, AnAccentMayStandApart)
{
    EXPECT_EQ(String().append("Re\u0301sume\u0301", utf8).bytes(roman), "R\x8Esum\x8E");
    EXPECT_EQ(String().append("Re\u0301", utf8).bytes(utf8), "Re\u0301") << "but is not composed unasked";
}

TEST(CoreFoundationStrings, EveryByteOfMacRomanComesBack)
{
    std::string all;
    for (int byte = 1; byte < 256; ++byte)
        all += static_cast<char>(byte);
    EXPECT_EQ(String().appendPascal(all, roman).bytes(roman), all);
}

TEST(CoreFoundationStrings, ACStringOfUTF16EndsAtAUnitOfZero)
{
    const std::string text("\x61\x00\x00\x62\x00\x00\x63\x00", 8);   // a, U+6200, zero, c
    String string;
    CFStringAppendCString(string.ref(), text.data(), littleUTF16);
    EXPECT_EQ(string.length(), 2);
}

TEST(CoreFoundationStrings, ALengthIsKept)
{
    String string(3);
    EXPECT_EQ(string.append("ab", utf8).append("cd", utf8).bytes(utf8), "ab");
    EXPECT_EQ(string.append("c", utf8).bytes(utf8), "abc");
    EXPECT_EQ(string.append("d", utf8).bytes(utf8), "abc");
}

TEST(CoreFoundationStrings, NullsAndNegativeSizesAreSafe)
{
    char buffer[4] = "xyz";
    const unsigned char pascal[] = {1, 'a'};
    String string;
    EXPECT_EQ(CFStringCreateMutable(nullptr, -1), nullptr);
    CFStringAppendCString(nullptr, "a", utf8);
    CFStringAppendPascalString(nullptr, pascal, utf8);
    CFStringAppendCString(string.ref(), nullptr, utf8);
    CFStringAppendPascalString(string.ref(), nullptr, utf8);
    EXPECT_EQ(CFStringGetLength(nullptr), 0);
    EXPECT_EQ(string.length(), 0);
    EXPECT_FALSE(CFStringGetCString(nullptr, buffer, 4, utf8));
    EXPECT_FALSE(CFStringGetCString(string.ref(), nullptr, 4, utf8));
    EXPECT_FALSE(CFStringGetCString(string.ref(), buffer, 0, utf8));
    EXPECT_FALSE(CFStringGetCString(string.ref(), buffer, -1, utf8));
    EXPECT_STREQ(buffer, "xyz");
    EXPECT_TRUE(CFStringGetCString(string.ref(), buffer, 1, utf8));
    EXPECT_STREQ(buffer, "");
    CFRelease(nullptr);
}

TEST(ThreadsCoreFoundation, StringsOfDifferentThreadsDoNotMeet)
{
    std::vector<std::thread> threads;
    for (const CFStringEncoding encoding : {roman, cyrillic, japanese, unicode})
        threads.emplace_back([encoding] {
            for (int round = 0; round < 500; ++round)
                EXPECT_FALSE(String().append("plain text", utf8).read(encoding, 64).empty());
        });
    for (std::thread &thread : threads)
        thread.join();
}

}   // namespace
