// What Unicode says of single characters.
#include "standin/text/module/text_module.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>

namespace standin::text_module
{

namespace
{

// The kinds of decomposition that change the look of a sign and not the sign. A circle, a square or a raised position is part of one.
bool isLooseKind(int kind)
{
    constexpr std::array kinds{U_DT_CANONICAL, U_DT_COMPAT, U_DT_FONT, U_DT_NARROW, U_DT_NOBREAK, U_DT_SMALL, U_DT_WIDE};
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

}   // namespace

bool beginsAnew(char32_t character)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *normalizer = icu::Normalizer2::getNFCInstance(status);
    return U_FAILURE(status) || normalizer->hasBoundaryBefore(static_cast<UChar32>(character));
}

std::u16string otherForm(char32_t character)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *normalizer = icu::Normalizer2::getNFKCInstance(status);
    icu::UnicodeString form;
    const auto codePoint = static_cast<UChar32>(character);
    if (U_FAILURE(status) || !isLooseKind(u_getIntPropertyValue(codePoint, UCHAR_DECOMPOSITION_TYPE)))
        return {};
    if (!normalizer->getRawDecomposition(codePoint, form))
        return {};
    return std::u16string(form.getBuffer(), static_cast<std::size_t>(form.length()));
}

char32_t folded(char32_t character)
{
    return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(character), U_FOLD_CASE_DEFAULT));
}

bool isPlain(char32_t character)
{
    const auto codePoint = static_cast<UChar32>(character);
    const int category = u_charType(codePoint);
    return category != U_CONTROL_CHAR && category != U_LINE_SEPARATOR && category != U_PARAGRAPH_SEPARATOR && category != U_UNASSIGNED &&
           !u_hasBinaryProperty(codePoint, UCHAR_BIDI_CONTROL);
}

}   // namespace standin::text_module
