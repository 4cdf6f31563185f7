#include "host/text_encodings.h"

#include "host/numbers.h"
#include "host/usage_error.h"

#include "platform/text.h"

#include <algorithm>
#include <cctype>

namespace host
{

namespace
{

struct NamedEncoding
{
    TextEncoding encoding;
    const char *word;   // null: only its number can be typed, since nothing converts it
    const char *name;
};

constexpr NamedEncoding encodings[] = {
    {0, "roman", "Mac Roman"},
    {1, "japanese", "Mac Japanese"},
    {2, "trad-chinese", "Mac Chinese, traditional"},
    {3, "korean", "Mac Korean"},
    {4, "arabic", "Mac Arabic"},
    {5, "hebrew", "Mac Hebrew"},
    {6, "greek", "Mac Greek"},
    {7, "cyrillic", "Mac Cyrillic"},
    {9, nullptr, "Mac Devanagari"},
    {10, nullptr, "Mac Gurmukhi"},
    {11, nullptr, "Mac Gujarati"},
    {21, "thai", "Mac Thai"},
    {25, "simp-chinese", "Mac Chinese, simplified"},
    {26, nullptr, "Mac Tibetan"},
    {29, "central-european", "Mac Central European"},
    {33, nullptr, "Mac Symbol"},
    {34, nullptr, "Mac Dingbats"},
    {35, "turkish", "Mac Turkish"},
    {36, "croatian", "Mac Croatian"},
    {37, "icelandic", "Mac Icelandic"},
    {38, "romanian", "Mac Romanian"},
    {0x7E, nullptr, "Mac Unicode"},
    {0x8C, "farsi", "Mac Farsi"},
    {0x98, "ukrainian", "Mac Ukrainian"},
    {0x0100, nullptr, "Unicode"},
    {0x0201, "latin-1", "ISO 8859-1"},
    {0x0202, "latin-2", "ISO 8859-2"},
    {0x0205, "iso-cyrillic", "ISO 8859-5"},
    {0x0207, "iso-greek", "ISO 8859-7"},
    {0x0209, "latin-5", "ISO 8859-9"},
    {0x020F, "latin-9", "ISO 8859-15"},
    {0x0500, "windows-1252", "Windows Latin 1"},
    {0x0501, "windows-1250", "Windows Latin 2"},
    {0x0502, "windows-1251", "Windows Cyrillic"},
    {0x0503, "windows-1253", "Windows Greek"},
    {0x0504, "windows-1254", "Windows Turkish"},
    {0x0600, "ascii", "ASCII"},
    {kTextEncodingUnknown, "system", "unknown"},
};

constexpr std::size_t mostColumns = 90;   // of a line of words in help

}   // namespace

std::string encodingWords()
{
    std::string all;
    std::size_t lineStart = 0;
    for (const NamedEncoding &one : encodings)
    {
        if (one.word == nullptr)
            continue;
        std::string separator = all.empty() ? "" : all.size() - lineStart > mostColumns ? ",\n" : ", ";
        all += separator;
        if (separator.ends_with('\n'))
            lineStart = all.size();
        all += one.word;
    }
    return all;
}

std::string nameOfEncoding(TextEncoding encoding)
{
    auto row = std::find_if(std::begin(encodings), std::end(encodings), [&](const NamedEncoding &one) { return one.encoding == encoding; });
    return row != std::end(encodings) ? row->name : "";
}

TextEncoding encodingFromText(const std::string &typed)
{
    for (const NamedEncoding &one : encodings)
        if (one.word != nullptr && typed == one.word)
            return one.encoding;
    if (!typed.empty() && std::isdigit(static_cast<unsigned char>(typed[0])))
        return numberFromText(typed, 0xFFFFFFFF);
    std::string words = encodingWords();
    std::replace(words.begin(), words.end(), '\n', ' ');
    throw UsageError("\"" + typed + "\" is neither a number nor one of " + words);
}

}   // namespace host
