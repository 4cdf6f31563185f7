// The text encodings that can be converted, by their numbers.
#pragma once

#include "platform/platform.h"
#include "standin/text/code_table.h"

namespace standin
{

// The Macintosh's encodings that script, language and region decide between. A script's own encoding has the script's number.
constexpr TextEncoding macJapanese = 1, macChineseTraditional = 2, macKorean = 3, macArabic = 4, macHebrew = 5, macGreek = 6,
                       macCyrillic = 7;
constexpr TextEncoding macDevanagari = 9, macGurmukhi = 10, macGujarati = 11, macBengali = 13, macThai = 21, macGeorgian = 23,
                       macArmenian = 24;
constexpr TextEncoding macChineseSimplified = 25, macTibetan = 26, macEthiopic = 28, macCentralEuropean = 29, macVietnamese = 30;
constexpr TextEncoding macTurkish = 35, macCroatian = 36, macIcelandic = 37, macRomanian = 38, macCeltic = 39, macGaelic = 40;
constexpr TextEncoding macFarsi = 0x8C, macUkrainian = 0x98, macInuit = 0xEC;

// The table of an encoding, filled when it is first asked for, and kept until the process ends. Null if there is none, or if it takes the part
// that knows characters beyond ASCII (text_part.h) and that cannot be loaded. Mac Roman's needs no such part.
// `base` is what GetTextEncodingBase gives: variants of an encoding share its table.
const CodeTable *codeTableOf(TextEncoding base);

}   // namespace standin
