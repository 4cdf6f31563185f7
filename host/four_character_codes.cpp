#include "host/four_character_codes.h"

#include "host/numbers.h"
#include "host/text.h"
#include "host/usage_error.h"

#include <algorithm>

namespace host
{

namespace
{

bool startsAsNumber(std::string_view text)
{
    return text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

bool isPrintableMacRoman(char character)
{
    auto byte = static_cast<UInt8>(character);
    return byte >= 0x20 && byte != 0x7F;
}

}   // namespace

OSType codeFromText(std::string_view text)
{
    if (text.empty() || text == "0")
        return 0;
    if (startsAsNumber(text))
        return hexadecimalFromText(text, 8);
    std::optional<std::string> characters = macRomanFromUtf8(text);
    if (!characters)
        throw UsageError("\"" + std::string(text) + "\" has characters that are not in Mac Roman");
    if (characters->size() != 4)
        throw UsageError(
            "\"" + std::string(text) + "\" has " + std::to_string(characters->size()) +
            (characters->size() == 1 ? " character" : " characters") +
            ", but a code has exactly four; end a shorter one with spaces, as in \"PDF \", or give it as a number, as in 0x50444620");
    OSType code = 0;
    for (char character : *characters)
        code = code << 8 | static_cast<UInt8>(character);
    return code;
}

std::optional<std::string> textOfCode(OSType code)
{
    std::string characters;
    for (int shift = 24; shift >= 0; shift -= 8)
        characters += static_cast<char>(code >> shift & 0xFF);
    if (!std::all_of(characters.begin(), characters.end(), isPrintableMacRoman))
        return std::nullopt;
    return utf8FromMacRoman(characters);
}

std::string describeCode(OSType code)
{
    std::optional<std::string> text = textOfCode(code);
    return text ? "'" + *text + "'" : hexadecimal(code, 8);
}

}   // namespace host
