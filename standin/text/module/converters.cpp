// The characters of text encodings, from ICU's converters.
#include "standin/text/module/text_module.h"

#include <unicode/ucnv.h>
#include <unicode/utf16.h>

#include <memory>

namespace standin::text_module
{

namespace
{

struct CloseConverter
{
    void operator()(UConverter *converter) const { ucnv_close(converter); }
};

char16_t converted(UConverter *converter, unsigned code)
{
    UErrorCode status = U_ZERO_ERROR;
    char16_t units[8];
    const char bytes[2] = {static_cast<char>(code >> 8), static_cast<char>(code)};
    const bool isOneByte = code <= 0xFF;
    const std::int32_t count = ucnv_toUChars(converter, units, 8, isOneByte ? bytes + 1 : bytes, isOneByte ? 1 : 2, &status);
    return U_SUCCESS(status) && count == 1 && !U16_IS_SURROGATE(units[0]) ? units[0] : noCharacter;
}

}   // namespace

bool readCharacters(const char *converter, std::span<CodeAndCharacter> codes)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, CloseConverter> opened(ucnv_open(converter, &status));
    if (!opened || U_FAILURE(status))
        return false;
    for (CodeAndCharacter &row : codes)
        row.character = converted(opened.get(), row.code);
    return true;
}

}   // namespace standin::text_module
