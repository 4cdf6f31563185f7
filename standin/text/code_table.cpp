#include "standin/text/code_table.h"

#include "standin/text/unicode_forms.h"

#include <unicode/ucnv.h>
#include <unicode/utf16.h>

#include <utility>

namespace standin
{

namespace
{

constexpr unsigned oneByteCodes = 0x100;
constexpr unsigned firstNonAscii = 0x80;
constexpr unsigned allCodes = 0x10000;

// Pairs of first and last byte.
void mark(std::string_view ranges, std::array<bool, 256> &marked)
{
    for (std::size_t index = 0; index + 1 < ranges.size(); index += 2)
        for (unsigned byte = static_cast<std::uint8_t>(ranges[index]); byte <= static_cast<std::uint8_t>(ranges[index + 1]); ++byte)
            marked[byte] = true;
}

char16_t converted(UConverter *converter, const char *bytes, std::int32_t length)
{
    UErrorCode status = U_ZERO_ERROR;
    char16_t units[8];
    const std::int32_t count = ucnv_toUChars(converter, units, 8, bytes, length, &status);
    return U_SUCCESS(status) && count == 1 && !U16_IS_SURROGATE(units[0]) ? units[0] : noCharacter;
}

// In encodings with two-byte codes, ICU gives a control character for some codes that have none, and private ones for those that are left to
// users.
char16_t withoutMadeUpOnes(char16_t character)
{
    const bool isMadeUp = character <= 0x9F || (character >= 0xE000 && character <= 0xF8FF);
    return isMadeUp ? noCharacter : character;
}

}   // namespace

// Without a converter the upper half has no characters: text that needs them is then refused, never changed.
CodeTable::CodeTable(const Encoding &encoding)
{
    mark(encoding.twoByteCodes.leads, leads);
    mark(encoding.twoByteCodes.trails, trails);
    characters.assign(encoding.twoByteCodes.leads.empty() ? oneByteCodes : allCodes, noCharacter);
    for (unsigned code = 0; code < firstNonAscii; ++code)
        characters[code] = static_cast<char16_t>(code);
    fillCharacters(encoding);
    for (const CodeAndCharacter &correction : encoding.corrections)
        characters[correction.code] = correction.character;
    fillCodes();
}

void CodeTable::fillCharacters(const Encoding &encoding)
{
    if (encoding.upperHalf)
        for (unsigned code = firstNonAscii; code < oneByteCodes; ++code)
            characters[code] = (*encoding.upperHalf)[code - firstNonAscii];
    UErrorCode status = U_ZERO_ERROR;
    UConverter *converter = encoding.converter ? ucnv_open(encoding.converter, &status) : nullptr;
    if (converter == nullptr || U_FAILURE(status))
        return;
    for (unsigned code = firstNonAscii; code < oneByteCodes; ++code)
    {
        const char byte = static_cast<char>(code);
        const bool isOneByte = encoding.twoByteCodes.leads.empty();
        if (!leads[code])
            characters[code] = isOneByte ? converted(converter, &byte, 1) : withoutMadeUpOnes(converted(converter, &byte, 1));
    }
    fillTwoByteCharacters(converter, encoding.twoByteCodes);
    ucnv_close(converter);
}

void CodeTable::fillTwoByteCharacters(UConverter *converter, const TwoByteCodes &codes)
{
    std::array<bool, 256> commonLeads{};
    mark(codes.commonLeads, commonLeads);
    for (unsigned code = oneByteCodes; code < characters.size() && code <= codes.lastCommonCode; ++code)
    {
        const char bytes[2] = {static_cast<char>(code >> 8), static_cast<char>(code)};
        if (commonLeads[code >> 8] && trails[code & 0xFF])
            characters[code] = withoutMadeUpOnes(converted(converter, bytes, 2));
    }
}

void CodeTable::fillCodes()
{
    for (unsigned code = oneByteCodes; code < characters.size(); ++code)
        addCode(code);
    for (unsigned code = 0; code < oneByteCodes; ++code)
        addCode(code);
}

void CodeTable::addCode(unsigned code)
{
    const char16_t character = characters[code];
    if (character == noCharacter || codeOf(character) != noCode)
        return;
    std::unique_ptr<Page> &page = pages[character >> 8];
    if (!page)
    {
        page = std::make_unique<Page>();
        page->fill(noCode);
    }
    (*page)[character & 0xFF] = static_cast<std::uint16_t>(code);
    const std::u16string whole(1, character), apart = decomposed(whole);
    if (apart.size() == 2 && composed(apart) != whole)
        uncomposed.emplace(apart, code);
}

unsigned CodeTable::takeUncomposed(std::u16string &letter) const
{
    for (const auto &[pair, code] : uncomposed)
    {
        const std::size_t mark = letter.front() == pair[0] ? letter.find(pair[1], 1) : std::u16string::npos;
        if (mark == std::u16string::npos)
            continue;
        letter.erase(mark, 1);
        letter.erase(0, 1);
        return code;
    }
    return noCode;
}

TakenCode takeCode(const CodeTable &table, std::string_view text)
{
    unsigned code = static_cast<std::uint8_t>(text[0]);
    std::size_t length = 1;
    if (table.isLead(static_cast<std::uint8_t>(code)))
    {
        if (text.size() == 1)
            return {CodeProblem::breaksOff, 0, noCharacter};
        const auto second = static_cast<std::uint8_t>(text[1]);
        if (!table.isTrail(second))
            return {CodeProblem::badSecondByte, 0, noCharacter};
        code = code << 8 | second;
        length = 2;
    }
    const char16_t character = table.characterOf(code);
    return {character == noCharacter ? CodeProblem::unassigned : CodeProblem::none, length, character};
}

bool unicodeFromCodes(const CodeTable &table, std::string_view text, std::u16string &unicode)
{
    std::u16string converted;
    converted.reserve(text.size());
    while (!text.empty())
    {
        const TakenCode taken = takeCode(table, text);
        if (taken.problem != CodeProblem::none)
            return false;
        converted.push_back(taken.character);
        text.remove_prefix(taken.length);
    }
    unicode = std::move(converted);
    return true;
}

void appendCode(unsigned code, std::string &bytes)
{
    if (code > 0xFF)
        bytes.push_back(static_cast<char>(code >> 8));
    bytes.push_back(static_cast<char>(code));
}

bool appendCodes(const CodeTable &table, std::u16string_view text, std::string &bytes)
{
    const std::size_t before = bytes.size();
    for (char16_t unit : text)
    {
        const unsigned code = table.codeOf(unit);
        if (code == noCode)
        {
            bytes.resize(before);
            return false;
        }
        appendCode(code, bytes);
    }
    return true;
}

}   // namespace standin
