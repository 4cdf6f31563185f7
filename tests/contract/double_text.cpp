#include "tests/contract/platform_double.h"

TextDouble::TextDouble()
{
    characterWidths.fill(8);
    characterWidths[' '] = 5;
    characterWidths[0xC9] = 11;
}

void NumToString(SInt32 number, Str255 text)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("NumToString", {decimal(number), platform.pointer(text, "text")});
    const std::string digits = decimal(number);
    text[0] = static_cast<unsigned char>(digits.size());
    digits.copy(reinterpret_cast<char *>(text + 1), digits.size());
}

// A '-' in front negates. Of every other byte the low four bits count as a digit, as those of '0' to '9' do, and
// the value wraps around at 32 bits: so every text has a value that a test can tell beforehand.
void StringToNum(ConstStr255Param text, SInt32 *number)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("StringToNum", {quoted(text), platform.pointer(number, "number")});
    const bool isNegative = text[0] > 0 && text[1] == '-';
    UInt32 value = 0;
    for (int position = isNegative ? 2 : 1; position <= text[0]; ++position)
        value = value * 10 + (text[position] & 0x0F);
    *number = static_cast<SInt32>(isNegative ? UInt32{0} - value : value);
}

SInt16 StringWidth(ConstStr255Param text)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("StringWidth", {quoted(text)});
    std::deque<SInt16> &prepared = platform.text.nextStringWidths;
    if (!prepared.empty())
    {
        const SInt16 width = prepared.front();
        prepared.pop_front();
        return width;
    }
    int width = 0;
    for (int position = 1; position <= text[0]; ++position)
        width += platform.text.characterWidths[text[position]];
    return static_cast<SInt16>(width);
}

SInt16 CharWidth(SInt16 character)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("CharWidth", {decimal(character)});
    return platform.text.characterWidths[character & 0xFF];
}
