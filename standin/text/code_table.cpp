#include "standin/text/code_table.h"

#include "standin/text/text_part.h"
#include "standin/text/unicode_forms.h"

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
    std::vector<CodeAndCharacter> asked = encoding.converter ? askedCodes(encoding.twoByteCodes) : std::vector<CodeAndCharacter>();
    if (asked.empty() || !textPart() || !textPart()->readCharacters(encoding.converter, asked))
        return;
    const bool isOneByte = encoding.twoByteCodes.leads.empty();
    for (const auto &[code, character] : asked)
        characters[code] = isOneByte ? character : withoutMadeUpOnes(character);
}

// For which ICU's converter is asked.
std::vector<CodeAndCharacter> CodeTable::askedCodes(const TwoByteCodes &codes) const
{
    std::vector<CodeAndCharacter> asked;
    std::array<bool, 256> commonLeads{};
    mark(codes.commonLeads, commonLeads);
    for (unsigned code = firstNonAscii; code < oneByteCodes; ++code)
        if (!leads[code])
            asked.push_back({code, noCharacter});
    for (unsigned code = oneByteCodes; code < characters.size() && code <= codes.lastCommonCode; ++code)
        if (commonLeads[code >> 8] && trails[code & 0xFF])
            asked.push_back({code, noCharacter});
    return asked;
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
}

// Only letters beyond ASCII with marks ask for these, and finding them takes the part that knows such letters.
void CodeTable::findUncomposed() const
{
    for (std::size_t code = firstNonAscii; code < characters.size(); ++code)
    {
        const char16_t character = characters[code];
        if (character == noCharacter || codeOf(character) != code)
            continue;
        const std::u16string whole(1, character), apart = decomposed(whole);
        if (apart.size() == 2 && composed(apart) != whole)
            uncomposed.emplace(apart, static_cast<unsigned>(code));
    }
}

unsigned CodeTable::takeUncomposed(std::u16string &letter) const
{
    std::call_once(uncomposedFound, [this] { findUncomposed(); });
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
