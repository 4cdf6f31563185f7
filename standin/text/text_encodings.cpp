// Text encodings as numbers, and which one a script, a language and a region use.
#include "standin/text/encodings.h"

#include <algorithm>
#include <iterator>

using namespace standin;

namespace
{

constexpr ScriptCode anyScript = -128;
constexpr ScriptCode lastScript = 32, rightToLeftSymbols = 8, unicodeScript = 0x7E;
constexpr ScriptCode roman = 0, japanese = 1, chineseTraditional = 2, korean = 3, arabic = 4, hebrew = 5, greek = 6, cyrillic = 7;
constexpr ScriptCode devanagari = 9, gurmukhi = 10, gujarati = 11, bengali = 13, thai = 21, georgian = 23, armenian = 24,
                     chineseSimplified = 25;
constexpr ScriptCode tibetan = 26, ethiopic = 28, centralEuropean = 29, vietnamese = 30;

// A region or a language: the script it is written in, and its encoding where that is not the script's own.
struct Row
{
    SInt16 code;
    ScriptCode script;
    TextEncoding encoding;
};

constexpr TextEncoding own = kTextEncodingUnknown;

// By code. What is missing here is no region: 38, 63, 69, 80, 87, 89, 90, 93.
constexpr Row regions[] = {
    {0, roman, own},                 // United States
    {1, roman, own},                 // France
    {2, roman, own},                 // Britain
    {3, roman, own},                 // Germany
    {4, roman, own},                 // Italy
    {5, roman, own},                 // Netherlands
    {6, roman, own},                 // Flanders, Luxembourg
    {7, roman, own},                 // Sweden
    {8, roman, own},                 // Spain
    {9, roman, own},                 // Denmark
    {10, roman, own},                // Portugal
    {11, roman, own},                // French Canada
    {12, roman, own},                // Norway
    {13, hebrew, own},               // Israel
    {14, japanese, own},             // Japan
    {15, roman, own},                // Australia
    {16, arabic, own},               // Arabic countries
    {17, roman, own},                // Finland
    {18, roman, own},                // French Switzerland
    {19, roman, own},                // German Switzerland
    {20, greek, own},                // Greece
    {21, roman, macIcelandic},       // Iceland
    {22, roman, own},                // Malta
    {23, greek, own},                // Cyprus
    {24, roman, macTurkish},         // Turkey
    {25, roman, macCroatian},        // Croatia, in the time of Yugoslavia
    {26, roman, own},                // Netherlands, with a decimal comma
    {27, roman, own},                // Belgium and Luxembourg, with a decimal point
    {28, roman, own},                // Canada, with a decimal comma
    {29, roman, own},                // Canada, with a decimal point
    {30, roman, own},                // Portugal, variant
    {31, roman, own},                // Norway, variant
    {32, roman, own},                // Denmark, variant
    {33, devanagari, own},           // India, Hindi
    {34, arabic, macFarsi},          // Pakistan, Urdu
    {35, roman, macTurkish},         // Turkey, modified
    {36, roman, own},                // Italian Switzerland
    {39, roman, macRomanian},        // Romania
    {40, greek, own},                // ancient Greek
    {41, centralEuropean, own},      // Lithuania
    {42, centralEuropean, own},      // Poland
    {43, centralEuropean, own},      // Hungary
    {44, centralEuropean, own},      // Estonia
    {45, centralEuropean, own},      // Latvia
    {46, roman, own},                // Sami
    {47, roman, macIcelandic},       // Faroe Islands
    {48, arabic, macFarsi},          // Iran
    {49, cyrillic, own},             // Russia
    {50, roman, macCeltic},          // Ireland, Irish
    {51, korean, own},               // Korea
    {52, chineseSimplified, own},    // China
    {53, chineseTraditional, own},   // Taiwan
    {54, thai, own},                 // Thailand
    {56, centralEuropean, own},      // Czech Republic
    {57, centralEuropean, own},      // Slovakia
    {59, centralEuropean, own},      // Hungary, its older code
    {60, bengali, own},              // Bengal
    {61, cyrillic, own},             // Belarus
    {62, cyrillic, macUkrainian},    // Ukraine
    {64, greek, own},                // Greece, alternative
    {65, cyrillic, own},             // Serbia
    {66, roman, macCroatian},        // Slovenia
    {67, cyrillic, own},             // Macedonia
    {68, roman, macCroatian},        // Croatia
    {70, roman, own},                // Germany, reformed spelling
    {71, roman, own},                // Brazil
    {72, cyrillic, own},             // Bulgaria
    {73, roman, own},                // Catalonia
    {75, roman, macCeltic},          // Scotland, Gaelic
    {76, roman, macCeltic},          // Isle of Man
    {77, roman, macCeltic},          // Brittany
    {78, ethiopic, macInuit},        // Nunavut
    {79, roman, macCeltic},          // Wales
    {81, roman, macGaelic},          // Ireland, Irish in its old letters
    {82, roman, own},                // English Canada
    {83, tibetan, own},              // Bhutan
    {84, armenian, own},             // Armenia
    {85, georgian, own},             // Georgia
    {86, roman, own},                // Latin America, Spanish
    {88, roman, own},                // Tonga
    {91, roman, own},                // French, anywhere
    {92, roman, own},                // Austria
    {94, gujarati, own},             // Gujarat
    {95, gurmukhi, own},             // Punjab
    {96, arabic, macFarsi},          // India, Urdu
    {97, vietnamese, own},           // Vietnam
    {98, roman, own},                // French Belgium
    {99, cyrillic, own},             // Uzbekistan
    {101, roman, own},               // Norway, Nynorsk
    {102, roman, own},               // Afrikaans
    {103, roman, own},               // Esperanto
    {104, devanagari, own},          // Maharashtra
    {105, tibetan, own},             // Tibet
    {106, devanagari, own},          // Nepal
    {107, roman, own},               // Greenland
    {108, roman, own},               // Ireland, English
};

constexpr Row languages[] = {
    {0, roman, own},                 // English
    {1, roman, own},                 // French
    {2, roman, own},                 // German
    {3, roman, own},                 // Italian
    {4, roman, own},                 // Dutch
    {5, roman, own},                 // Swedish
    {6, roman, own},                 // Spanish
    {7, roman, own},                 // Danish
    {8, roman, own},                 // Portuguese
    {9, roman, own},                 // Norwegian
    {10, hebrew, own},               // Hebrew
    {11, japanese, own},             // Japanese
    {12, arabic, own},               // Arabic
    {13, roman, own},                // Finnish
    {14, greek, own},                // Greek
    {15, roman, macIcelandic},       // Icelandic
    {16, roman, own},                // Maltese
    {17, roman, macTurkish},         // Turkish
    {18, roman, macCroatian},        // Croatian
    {19, chineseTraditional, own},   // Chinese, traditional
    {20, arabic, macFarsi},          // Urdu
    {21, devanagari, own},           // Hindi
    {22, thai, own},                 // Thai
    {23, korean, own},               // Korean
    {24, centralEuropean, own},      // Lithuanian
    {25, centralEuropean, own},      // Polish
    {26, centralEuropean, own},      // Hungarian
    {27, centralEuropean, own},      // Estonian
    {28, centralEuropean, own},      // Latvian
    {29, roman, own},                // Sami
    {30, roman, macIcelandic},       // Faroese
    {31, arabic, macFarsi},          // Farsi
    {32, cyrillic, own},             // Russian
    {33, chineseSimplified, own},    // Chinese, simplified
    {34, roman, own},                // Flemish
    {35, roman, macCeltic},          // Irish
    {36, roman, own},                // Albanian
    {37, roman, macRomanian},        // Romanian
    {38, centralEuropean, own},      // Czech
    {39, centralEuropean, own},      // Slovak
    {40, roman, macCroatian},        // Slovenian
    {41, hebrew, own},               // Yiddish
    {42, cyrillic, own},             // Serbian
    {43, cyrillic, own},             // Macedonian
    {44, cyrillic, own},             // Bulgarian
    {45, cyrillic, macUkrainian},    // Ukrainian
    {46, cyrillic, own},             // Belorussian
    {51, armenian, own},             // Armenian
    {52, georgian, own},             // Georgian
    {63, tibetan, own},              // Tibetan
    {64, devanagari, own},           // Nepali
    {66, devanagari, own},           // Marathi
    {67, bengali, own},              // Bengali
    {69, gujarati, own},             // Gujarati
    {70, gurmukhi, own},             // Punjabi
    {80, vietnamese, own},           // Vietnamese
};

// Three that go with every script: 37 international, 55 any region of a script, 58 East Asia, 74 several languages.
bool isOfEveryScript(RegionCode region)
{
    return region == 37 || region == 55 || region == 58 || region == 74;
}

bool isScript(ScriptCode script)
{
    return script == unicodeScript || (script >= 0 && script <= lastScript && script != rightToLeftSymbols);
}

// What is known so far: a script once something has said it, and an encoding once something has said more than the script.
struct Choice
{
    ScriptCode script = anyScript;
    TextEncoding encoding = own;
};

// False if the row says something else than what is known already.
bool agree(Choice &choice, const Row &row)
{
    if (choice.script != anyScript && choice.script != row.script)
        return false;
    if (choice.encoding != own && row.encoding != own && choice.encoding != row.encoding)
        return false;
    choice.script = row.script;
    choice.encoding = row.encoding != own ? row.encoding : choice.encoding;
    return true;
}

template <std::size_t count>
bool agreeWithRow(Choice &choice, const Row (&rows)[count], SInt16 code)
{
    const Row *found = std::find_if(std::begin(rows), std::end(rows), [code](const Row &row) { return row.code == code; });
    return found != std::end(rows) && agree(choice, *found);
}

}   // namespace

TextEncoding CreateTextEncoding(UInt32 base, UInt32 variant, UInt32 format)
{
    return (base & 0xFFFF) | (variant & 0x3FF) << 16 | (format & 0xF) << 26;
}

UInt32 GetTextEncodingBase(TextEncoding encoding)
{
    return encoding & 0xFFFF;
}

// Any of the three may be left open with -128, but not all. The font's name decides nothing. `encoding` is written only on success.
// Result: noErr; paramErr for a null pointer, for codes that do not exist and for those that do not go together.
OSStatus UpgradeScriptInfoToTextEncoding(ScriptCode script, LangCode language, RegionCode region, ConstStr255Param, TextEncoding *encoding)
{
    if (encoding == nullptr || (script != anyScript && !isScript(script)))
        return paramErr;
    Choice choice{script};
    if (language != kTextLanguageDontCare && !agreeWithRow(choice, languages, language))
        return paramErr;
    if (region != kTextRegionDontCare && !isOfEveryScript(region) && !agreeWithRow(choice, regions, region))
        return paramErr;
    if (choice.script == anyScript)
        return paramErr;
    *encoding = choice.encoding != own ? choice.encoding : static_cast<TextEncoding>(choice.script);
    return noErr;
}
