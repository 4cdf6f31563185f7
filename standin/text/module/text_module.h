// What the part `zerbtext.so` does for text beyond ASCII, through ICU. The stand-in's library links no ICU, whose data alone are 30 MB, and
// loads the part when it is first needed (standin/text/text_part.h); both are built together and share these types.
//
// All functions may be called from any thread.
#pragma once

#include "standin/text/code_table.h"

#include <span>
#include <string>
#include <string_view>

namespace standin
{

struct TextModule
{
    // Gives each code the character that ICU's converter has for it, or noCharacter. False, and nothing is given, if ICU has no such converter.
    bool (*readCharacters)(const char *converter, std::span<CodeAndCharacter> codes);

    // As in unicode_forms.h.
    std::u16string (*decomposed)(std::u16string_view unicode);
    std::u16string (*composed)(std::u16string_view unicode);

    // The composed form after Unicode's own rule, which leaves no range alone.
    std::u16string (*plainlyComposed)(std::u16string_view unicode);

    // Whether a character composes with nothing before it.
    bool (*beginsAnew)(char32_t character);

    // Another form of the same sign, or nothing: Unicode's compatibility decomposition of the kinds that change the look alone.
    std::u16string (*otherForm)(char32_t character);

    // A letter without its case.
    char32_t (*folded)(char32_t character);

    // Whether Unicode has the character, and it is no control character, no line end, and turns no direction of writing.
    bool (*isPlain)(char32_t character);
};

constexpr const char *textModuleFile = "zerbtext.so";
constexpr const char *textModuleFunction = "zerbTextModule";   // gives a const TextModule *
using TextModuleFunction = const TextModule *();

// What the table is made of.
namespace text_module
{

bool readCharacters(const char *converter, std::span<CodeAndCharacter> codes);
std::u16string decomposed(std::u16string_view unicode);
std::u16string composed(std::u16string_view unicode);
std::u16string plainlyComposed(std::u16string_view unicode);
bool beginsAnew(char32_t character);
std::u16string otherForm(char32_t character);
char32_t folded(char32_t character);
bool isPlain(char32_t character);

}   // namespace text_module

}   // namespace standin
