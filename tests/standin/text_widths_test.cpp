// Widths of text in the port of fixed width that stands in for fonts.
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

TEST(TextWidths, EveryCharacterIsSixPixelsWide)
{
    for (int code = 0; code < 256; ++code)
        EXPECT_EQ(CharWidth(static_cast<SInt16>(code)), 6) << code;
}

TEST(TextWidths, ACharacterThatCameAsANegativeCharIsAsWide)
{
    for (int code = -128; code < 0; ++code)
        EXPECT_EQ(CharWidth(static_cast<SInt16>(code)), CharWidth(static_cast<SInt16>(code & 0xFF))) << code;
}

TEST(TextWidths, AStringIsAsWideAsItsCharacters)
{
    for (int length : {0, 1, 2, 5, 31, 127, 128, 254, 255})
        for (int code : {0x00, 0x20, 0x69, 0x7F, 0x80, 0xC9, 0xFF})
            EXPECT_EQ(widthOf(length, code), length * CharWidth(static_cast<SInt16>(code))) << length << " of " << code;
}

TEST(TextWidths, TheLongestStringFitsInSixteenBits)
{
    EXPECT_EQ(widthOf(255, 'W'), 1530);
}

}   // namespace
