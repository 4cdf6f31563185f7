#include "standin/text/encodings.h"

#include "standin/text/text_part.h"

#include <algorithm>
#include <mutex>
#include <span>

namespace standin
{

namespace
{

using namespace std::string_view_literals;

struct Row
{
    TextEncoding base;
    Encoding encoding;
    std::once_flag filled{};
    const CodeTable *table = nullptr;
};

constexpr TwoByteCodes noTwoByteCodes{{}, {}, {}, 0};

// Common are the standard's own characters: what makers added, each in his own way, differs between ICU's converter and the Macintosh.
constexpr TwoByteCodes jisCodes{"\x81\x9F\xE0\xFC"sv, "\x40\x7E\x80\xFC"sv, "\x81\x84\x88\x9F\xE0\xEA"sv, 0xEAFC};
constexpr TwoByteCodes bigFiveCodes{"\xA1\xFC"sv, "\x40\x7E\xA1\xFE"sv, "\xA1\xA3\xA4\xC6\xC9\xF9"sv, 0xF9D5};
constexpr TwoByteCodes gbCodes{"\xA1\xFC"sv, "\xA1\xFE"sv, "\xA1\xA9\xB0\xF7"sv, 0xF7FE};
constexpr TwoByteCodes ksCodes{"\xA1\xFE"sv, "\xA1\xFE"sv, "\xA1\xAC\xB0\xC8\xCA\xFD"sv, 0xFDFE};

// The differences between ICU's converter and the Macintosh, and the one-byte codes that the Macintosh added.
constexpr CodeAndCharacter japaneseCorrections[] = {{0x5C, 0x00A5}, {0x80, 0x005C},   {0xA0, 0x00A0},   {0xFD, 0x00A9},  {0xFE, 0x2122},
                                                    {0xFF, 0x2026}, {0x8191, 0x00A2}, {0x8192, 0x00A3}, {0x81CA, 0x00AC}};
constexpr CodeAndCharacter traditionalCorrections[] = {
    {0x80, 0x005C},   {0xA0, 0x00A0},        {0xFD, 0x00A9},        {0xFE, 0x2122},        {0xFF, 0x2026},        {0xA145, 0x00B7},
    {0xA14B, 0x22EF}, {0xA1C2, 0x203E},      {0xA1E3, 0x223C},      {0xA1F3, 0x2609},      {0xA241, 0xFF0F},      {0xA242, 0xFF3C},
    {0xA244, 0x00A5}, {0xA150, noCharacter}, {0xA1FE, noCharacter}, {0xA240, noCharacter}, {0xA3E1, noCharacter}, {0xA246, 0x00A2},
    {0xA247, 0x00A3}, {0xA2CC, noCharacter}, {0xA2CE, noCharacter}};
constexpr CodeAndCharacter simplifiedCorrections[] = {
    {0x80, 0x00FC},   {0xA0, 0x00A0},   {0xFD, 0x00A9},   {0xFE, 0x2122},   {0xFF, 0x2026},   {0xA1A4, 0x00B7}, {0xA1AA, 0x2014},
    {0xA1AB, 0x301C}, {0xA1AD, 0x22EF}, {0xA1E9, 0x00A2}, {0xA1EA, 0x00A3}, {0xA3A4, 0x00A5}, {0xA3A7, 0xFF07}, {0xA3FE, 0x203E}};
constexpr CodeAndCharacter koreanCorrections[] = {{0x80, 0x00A0},   {0x81, 0x20A9},   {0x83, 0x00A9},   {0xFF, 0x2026},   {0xA1A9, 0x2013},
                                                  {0xA1AA, 0x2014}, {0xA1AB, 0x2016}, {0xA1AD, 0x301C}, {0xA1CB, 0x00A2}, {0xA1CC, 0x00A3},
                                                  {0xA1CD, 0x00A5}, {0xA1FE, 0x00AC}, {0xA2A6, 0x02DC}, {0xA2C1, 0x25C9}, {0xA3FE, 0x203E}};

Encoding fromConverter(const char *converter)
{
    return {converter, nullptr, {}, noTwoByteCodes};
}

Encoding fromList(const UpperHalf &upperHalf)
{
    return {nullptr, &upperHalf, {}, noTwoByteCodes};
}

// The bases 0 to 0xFF are the Macintosh's, 0x02.. the ISO's 8859, 0x05.. those of Windows, 0x0600 is ASCII.
// The Macintosh's Cyrillic and Ukrainian are one since both have the letter ghe with upturn and the euro sign.
std::span<Row> rows()
{
    static Row all[] = {
        {kTextEncodingMacRoman, fromList(romanUpperHalf)},
        {macJapanese, {"ibm-943_P130-1999", nullptr, japaneseCorrections, jisCodes}},
        {macChineseTraditional, {"windows-950", nullptr, traditionalCorrections, bigFiveCodes}},
        {macKorean, {"EUC-KR", nullptr, koreanCorrections, ksCodes}},
        {macArabic, fromList(arabicUpperHalf)},
        {macHebrew, fromList(hebrewUpperHalf)},
        {macGreek, fromConverter("x-mac-greek")},
        {macCyrillic, fromConverter("x-mac-cyrillic")},
        {macThai, fromList(thaiUpperHalf)},
        {macChineseSimplified, {"EUC-CN", nullptr, simplifiedCorrections, gbCodes}},
        {macCentralEuropean, fromConverter("x-mac-centraleurroman")},
        {macTurkish, fromConverter("x-mac-turkish")},
        {macCroatian, fromList(croatianUpperHalf)},
        {macIcelandic, fromList(icelandicUpperHalf)},
        {macRomanian, fromList(romanianUpperHalf)},
        {macFarsi, fromList(farsiUpperHalf)},
        {macUkrainian, fromConverter("x-mac-cyrillic")},
        {0x0201, fromConverter("ISO-8859-1")},
        {0x0202, fromConverter("ISO-8859-2")},
        {0x0205, fromConverter("ISO-8859-5")},
        {0x0207, fromConverter("ISO-8859-7")},
        {0x0209, fromConverter("ISO-8859-9")},
        {0x020F, fromConverter("ISO-8859-15")},
        {0x0500, fromConverter("windows-1252")},
        {0x0501, fromConverter("windows-1250")},
        {0x0502, fromConverter("windows-1251")},
        {0x0503, fromConverter("windows-1253")},
        {0x0504, fromConverter("windows-1254")},
        {0x0600, fromConverter("US-ASCII")},
    };
    return all;
}

}   // namespace

const CodeTable *codeTableOf(TextEncoding base)
{
    const std::span<Row> all = rows();
    const auto row = std::find_if(all.begin(), all.end(), [base](const Row &each) { return each.base == base; });
    if (row == all.end())
        return nullptr;
    if (row->encoding.converter && !textPart())
        return nullptr;
    std::call_once(row->filled, [&row] { row->table = new CodeTable(row->encoding); });   // threads may still convert when others are gone
    return row->table;
}

}   // namespace standin
