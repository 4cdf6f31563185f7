// Short forms of the text converters' calls, which also see that nothing is written past what is counted; and Mac Roman, written out.
#pragma once

#include "platform/platform.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace support
{

inline constexpr char16_t macRomanUpperHalf[128] = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5, 0x00E7, 0x00E9, 0x00E8,   // 80
    0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, 0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC,   // 90
    0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6, 0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,   // A0
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8,   // B0
    0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, 0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153,   // C0
    0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,   // D0
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1, 0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4,   // E0
    0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,   // F0
};

// The character of a byte of Mac Roman.
inline char16_t macRoman(int byte)
{
    return byte < 0x80 ? static_cast<char16_t>(byte) : macRomanUpperHalf[byte - 0x80];
}

constexpr UInt32 asItIs = 0, decomposedForm = 2;   // variants of Unicode
constexpr std::size_t plentyOfRoom = 2048;

struct TextResult
{
    OSStatus status;
    std::size_t read;   // bytes
    std::string text;
};

struct UnicodeResult
{
    OSStatus status;
    std::size_t read;   // bytes
    std::u16string unicode;
};

bool operator==(const TextResult &a, const TextResult &b);
bool operator==(const UnicodeResult &a, const UnicodeResult &b);
void PrintTo(const TextResult &result, std::ostream *stream);
void PrintTo(const UnicodeResult &result, std::ostream *stream);

UnicodeMapping mappingOf(TextEncoding base, UInt32 variant = decomposedForm);

// A converter is made for each. `capacity` is in bytes.
TextResult toText(TextEncoding base, std::u16string_view unicode, OptionBits flags = 0, std::size_t capacity = plentyOfRoom);
UnicodeResult toUnicode(TextEncoding base, std::string_view text, UInt32 variant = decomposedForm, OptionBits flags = 0,
                        std::size_t capacity = plentyOfRoom);

}   // namespace support
