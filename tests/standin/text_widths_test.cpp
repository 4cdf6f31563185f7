// Widths of text in the font of the ports. Nothing here depends on which font that is.
#include "platform/drawing.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{

// A string of `length` characters of this code; the bytes behind it are others.
SInt16 widthOf(int length, int code)
{
    Str255 text;
    std::memset(text, 0xC9, sizeof text);
    text[0] = static_cast<unsigned char>(length);
    std::memset(text + 1, code, static_cast<std::size_t>(length));
    return StringWidth(text);
}

TEST(TextWidths, VisibleCharactersAreWideAndControlCharactersAreNot)
{
    for (int code = 0; code < 256; ++code)
    {
        const int width = CharWidth(static_cast<SInt16>(code));
        if (code < 0x80)   // of the others, some may be marks that take no place
        {
            EXPECT_EQ(width == 0, code < 0x20 || code == 0x7F) << code;
        }
        EXPECT_GE(width, 0) << code;
        EXPECT_LE(width, 128) << code;
    }
}

TEST(TextWidths, ACharacterThatCameAsANegativeCharIsAsWide)
{
    for (int code = -128; code < 0; ++code)
        EXPECT_EQ(CharWidth(static_cast<SInt16>(code)), CharWidth(static_cast<SInt16>(code & 0xFF))) << code;
}

TEST(TextWidths, AStringIsAsWideAsItsCharacters)
{
    for (int length : {0, 1, 2, 5, 31, 127, 128, 254, 255})
        for (int code = 0; code < 256; ++code)
            EXPECT_EQ(widthOf(length, code), length * CharWidth(static_cast<SInt16>(code))) << length << " of " << code;
}

TEST(TextWidths, NeighboursDoNotMoveTogether)
{
    Str255 all = {255};
    int sum = 0;
    for (int code = 1; code < 256; ++code)
    {
        all[code] = static_cast<unsigned char>(code * 83);   // each once, in a mixed order, AV and To among them
        sum += CharWidth(static_cast<SInt16>(all[code]));
    }
    EXPECT_EQ(StringWidth(all), sum);
    for (int one = 0x20; one < 0x7F; ++one)
        for (int other = 0x20; other < 0x7F; ++other)
        {
            const unsigned char pair[] = {2, static_cast<unsigned char>(one), static_cast<unsigned char>(other)};
            ASSERT_EQ(StringWidth(pair), CharWidth(static_cast<SInt16>(one)) + CharWidth(static_cast<SInt16>(other)))
                << one << ", " << other;
        }
}

}   // namespace
