#include "standin/text/text_converters.h"

#include "standin/text/encodings.h"
#include "standin/text/text_part.h"

#include <unicode/utf16.h>

namespace standin
{

namespace
{

constexpr TextEncoding firstUnicodeBase = 0x0100, lastUnicodeBase = 0x0103;
constexpr UInt32 asItIs = 0, decomposedForm = 2;   // variants of Unicode

UInt32 variantOf(TextEncoding encoding)
{
    return encoding >> 16 & 0x3FF;
}

UInt32 formatOf(TextEncoding encoding)
{
    return encoding >> 26 & 0xF;
}

bool isKnownUnicode(TextEncoding encoding)
{
    const UInt32 base = GetTextEncodingBase(encoding);
    const UInt32 variant = variantOf(encoding);
    return base >= firstUnicodeBase && base <= lastUnicodeBase && (variant == asItIs || variant == decomposedForm) &&
           formatOf(encoding) == 0;
}

}   // namespace

// The mapping's version is not looked at: each table has one.
OSStatus findMapping(const UnicodeMapping *wanted, Mapping &mapping)
{
    if (wanted == nullptr)
        return paramErr;
    if (!isKnownUnicode(wanted->unicodeEncoding) || formatOf(wanted->otherEncoding) != 0)
        return kTextUnsupportedEncodingErr;
    const CodeTable *table = codeTableOf(GetTextEncodingBase(wanted->otherEncoding));
    if (table == nullptr)
        return kTextUnsupportedEncodingErr;
    mapping = {table, variantOf(wanted->unicodeEncoding) == decomposedForm};
    return noErr;
}

bool beginConversion(const ConversionArguments &arguments)
{
    for (UInt32 *count : {arguments.outputOffsetCount, arguments.bytesRead, arguments.bytesWritten})
        if (count)
            *count = 0;
    const bool hasInput = arguments.input != nullptr || arguments.inputLength == 0;
    const bool hasOutput = arguments.output != nullptr || arguments.outputCapacity == 0;
    return hasInput && hasOutput && arguments.offsetCount == 0 && arguments.bytesRead && arguments.bytesWritten;
}

bool beginsAnew(char32_t character)
{
    return character < firstMark || !textPart() || textPart()->beginsAnew(character);
}

std::size_t elementLength(std::u16string_view text)
{
    std::size_t length = 0;
    for (std::size_t next = 0; next < text.size(); length = next)
    {
        UChar32 character;
        U16_NEXT(text.data(), next, text.size(), character);
        if (length > 0 && (U_IS_SURROGATE(character) || beginsAnew(static_cast<char32_t>(character))))
            break;
        if (U_IS_SURROGATE(character))
            return next;
    }
    return length;
}

}   // namespace standin
