// Both directions of a text encoding in which each character has a code of one or two bytes.
//
// A table is filled once, from a list or from ICU's converter, and never changes: all of its functions may be called from any thread.
#pragma once

#include "standin/text/upper_halves.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace standin
{

constexpr char16_t noCharacter = 0xFFFD;
constexpr unsigned noCode = 0xFFFF;

// A code of two bytes has the first one in its high byte.
struct CodeAndCharacter
{
    unsigned code;
    char16_t character;   // noCharacter: the code has none
};

// What the two-byte codes of an encoding look like. There are none if `leads` is empty.
struct TwoByteCodes
{
    std::string_view leads;         // first bytes, as pairs of first and last
    std::string_view trails;        // second bytes, likewise
    std::string_view commonLeads;   // first bytes of the codes for which ICU's converter is asked, likewise; the others have no character
    unsigned lastCommonCode;
};

struct Encoding
{
    const char *converter;                           // ICU's name for it, or null
    const UpperHalf *upperHalf;                      // a list to take instead
    std::span<const CodeAndCharacter> corrections;   // where the Macintosh differs from ICU's converter
    TwoByteCodes twoByteCodes;
};

class CodeTable
{
public:
    explicit CodeTable(const Encoding &encoding);

    bool isLead(std::uint8_t byte) const { return leads[byte]; }
    bool isTrail(std::uint8_t byte) const { return trails[byte]; }

    // The character of a code, or noCharacter.
    char16_t characterOf(unsigned code) const { return code < characters.size() ? characters[code] : noCharacter; }

    // The code of a character, or noCode. Of several codes for one character it is one of two bytes, and the lowest of those that are left.
    unsigned codeOf(char16_t character) const
    {
        const auto &page = pages[character >> 8];
        return page ? (*page)[character & 0xFF] : noCode;
    }

    // Letters with a mark that have a code but that composing never makes, as in Hebrew. If such a letter and mark are in a decomposed letter
    // with its marks, both are taken out of it. Gives their code, or noCode.
    unsigned takeUncomposed(std::u16string &letter) const;

private:
    using Page = std::array<std::uint16_t, 256>;

    void fillCharacters(const Encoding &encoding);
    std::vector<CodeAndCharacter> askedCodes(const TwoByteCodes &codes) const;
    void fillCodes();
    void addCode(unsigned code);
    void findUncomposed() const;

    std::array<bool, 256> leads{}, trails{};
    std::vector<char16_t> characters;               // by code
    std::array<std::unique_ptr<Page>, 256> pages;   // codes by character, a page for each high byte that occurs
    mutable std::once_flag uncomposedFound;
    mutable std::map<std::u16string, unsigned> uncomposed;   // codes by letter and mark, found when they are first asked for
};

// What stands at the front of a text. A whole code without a character has its length, broken ones have length 0.
enum class CodeProblem
{
    none,
    unassigned,
    badSecondByte,
    breaksOff
};

struct TakenCode
{
    CodeProblem problem;
    std::size_t length;
    char16_t character;
};

TakenCode takeCode(const CodeTable &table, std::string_view text);   // of a text that is not empty

// The characters of a whole text. False if any code has none or is broken; `unicode` is then untouched.
bool unicodeFromCodes(const CodeTable &table, std::string_view text, std::u16string &unicode);

// Appends the code of each unit. False if any has none; `bytes` is then as it was.
bool appendCodes(const CodeTable &table, std::u16string_view text, std::string &bytes);
void appendCode(unsigned code, std::string &bytes);

}   // namespace standin
