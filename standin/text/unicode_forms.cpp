#include "standin/text/unicode_forms.h"

#include "standin/standin.h"
#include "standin/text/text_part.h"

#include <algorithm>

namespace standin
{

namespace
{

// A form of text that stays below these is the text itself, which spares most names the work, and most programs the part that does it.
constexpr char16_t firstDecomposable = 0x00C0;
constexpr char16_t firstComposable = 0x0300;

bool staysBelow(std::u16string_view unicode, char16_t limit)
{
    return std::all_of(unicode.begin(), unicode.end(), [limit](char16_t unit) { return unit < limit; });
}

// The part, if a form of the text is another than the text itself.
const TextModule *partFor(std::u16string_view unicode, char16_t limit)
{
    return staysBelow(unicode, limit) ? nullptr : textPart();
}

}   // namespace

std::u16string decomposed(std::u16string_view unicode)
{
    const TextModule *part = partFor(unicode, firstDecomposable);
    return part ? part->decomposed(unicode) : std::u16string(unicode);
}

std::u16string composed(std::u16string_view unicode)
{
    const TextModule *part = partFor(unicode, firstComposable);
    return part ? part->composed(unicode) : std::u16string(unicode);
}

bool canDecompose(std::u16string_view unicode)
{
    return staysBelow(unicode, firstDecomposable) || textPart();
}

bool canCompose(std::u16string_view unicode)
{
    return staysBelow(unicode, firstComposable) || textPart();
}

// --- for hosts -----------------------------------------------------------------------------------------------------------------------------

std::u16string composedText(std::u16string_view unicode)
{
    const TextModule *part = partFor(unicode, firstComposable);
    return part ? part->plainlyComposed(unicode) : std::u16string(unicode);
}

bool isPlainCharacter(char32_t character)
{
    constexpr char32_t firstPrintable = ' ', deletion = 0x7F, firstNonAscii = 0x80;
    if (character < firstNonAscii)
        return character >= firstPrintable && character != deletion;
    const TextModule *part = textPart();
    return part && part->isPlain(character);
}

}   // namespace standin
