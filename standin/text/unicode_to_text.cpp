// Text of an encoding from Unicode.
//
// Letters with marks may come composed or apart: both give the code of the whole letter. What belongs together is written whole or not at
// all, so a full buffer never ends with half a two-byte code or with a letter whose accent did not fit. Conversion stops at the first thing that
// cannot be converted; what came before it is written and counted.
#include "standin/text/loose_mappings.h"
#include "standin/text/text_converters.h"
#include "standin/text/unicode_forms.h"

#include <new>
#include <unicode/utf16.h>

#include <cstring>
#include <string>

using namespace standin;

namespace
{

constexpr int mostLooseSteps = 3;   // a horizontal bar becomes a dash, and where there is none either, a hyphen
constexpr char replacement = '?';

ConverterTable<UnicodeToTextInfo> &openConverters()
{
    static auto &table = *new ConverterTable<UnicodeToTextInfo>;   // threads may still convert when the others are gone
    return table;
}

// The whole letter where the encoding has one, else its parts.
bool appendStrictly(const CodeTable &table, std::u16string_view element, std::string &bytes)
{
    if (element.size() == 1 && appendCodes(table, element, bytes))
        return true;
    std::u16string apart = decomposed(element);
    const unsigned code = table.takeUncomposed(apart);
    if (code == noCode)
        return appendCodes(table, composed(element), bytes) || appendCodes(table, apart, bytes);
    const std::size_t before = bytes.size();
    appendCode(code, bytes);
    if (appendCodes(table, apart, bytes))
        return true;
    bytes.resize(before);
    return false;
}

bool appendLoosely(const CodeTable &table, std::u16string_view text, int steps, std::string &bytes)
{
    const std::size_t before = bytes.size();
    for (std::size_t next = 0; next < text.size();)
    {
        const std::size_t start = next;
        UChar32 character;
        U16_NEXT(text.data(), next, text.size(), character);
        if (appendStrictly(table, text.substr(start, next - start), bytes))
            continue;
        const std::u16string form = looseFormOf(static_cast<char32_t>(character));
        if (form.empty() || steps == 0 || !appendLoosely(table, form, steps - 1, bytes))
        {
            bytes.resize(before);
            return false;
        }
    }
    return true;
}

// Result: noErr; kTECUsedFallbacksStatus if a replacement was written; otherwise why there is nothing in `bytes`.
OSStatus codesOfElement(const CodeTable &table, std::u16string_view element, bool isLast, OptionBits flags, std::string &bytes)
{
    if (U16_IS_SURROGATE(element.front()) && element.size() == 1)
        return isLast && U16_IS_LEAD(element.front()) ? kTECPartialCharErr : kTextMalformedInputErr;
    if (appendStrictly(table, element, bytes))
        return noErr;
    if ((flags & looseMappings) && appendLoosely(table, composed(element), mostLooseSteps, bytes))
        return noErr;
    if (!(flags & useFallbacks))
        return kTECUnmappableElementErr;
    bytes.push_back(replacement);
    return kTECUsedFallbacksStatus;
}

struct Output
{
    char *bytes;
    std::size_t capacity;
};

// Converts what needs no thought: characters that no mark follows and whose code is one byte.
void convertPlainly(const CodeTable &table, std::u16string_view text, const Output &output, std::size_t &read, std::size_t &written)
{
    while (read < text.size() && written < output.capacity && text[read] < firstMark &&
           (read + 1 == text.size() || text[read + 1] < firstMark))
    {
        const unsigned code = table.codeOf(text[read]);
        if (code > 0xFF)
            return;
        output.bytes[written++] = static_cast<char>(code);
        ++read;
    }
}

// `read` counts units here, `written` bytes.
OSStatus convert(const CodeTable &table, std::u16string_view text, OptionBits flags, const Output &output, std::size_t &read,
                 std::size_t &written)
{
    OSStatus result = noErr;
    std::string bytes;
    for (;;)
    {
        convertPlainly(table, text, output, read, written);
        if (read == text.size())
            return result;
        const std::u16string_view rest = text.substr(read);
        const std::u16string_view element = rest.substr(0, elementLength(rest));
        bytes.clear();
        const OSStatus status = codesOfElement(table, element, element.size() == rest.size(), flags, bytes);
        if (status != noErr && status != kTECUsedFallbacksStatus)
            return status;
        if (bytes.size() > output.capacity - written)
            return kTECOutputBufferFullStatus;
        std::memcpy(output.bytes + written, bytes.data(), bytes.size());
        read += element.size();
        written += bytes.size();
        result = status != noErr ? status : result;
    }
}

}   // namespace

OSStatus CreateUnicodeToTextInfo(const UnicodeMapping *mapping, UnicodeToTextInfo *converter)
try
{
    return createConverter(openConverters(), mapping, converter);
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSStatus DisposeUnicodeToTextInfo(UnicodeToTextInfo *converter)
try
{
    return disposeConverter(openConverters(), converter);
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSStatus ConvertFromUnicodeToText(UnicodeToTextInfo converter, ByteCount inputLength, const UniChar *input, OptionBits flags,
                                  ItemCount offsetCount, const ByteOffset *, ItemCount *outputOffsetCount, ByteOffset *,
                                  ByteCount outputCapacity, ByteCount *bytesRead, ByteCount *bytesWritten, void *output)
try
{
    if (!beginConversion({inputLength, input, offsetCount, outputOffsetCount, outputCapacity, bytesRead, bytesWritten, output}))
        return paramErr;
    Mapping mapping;
    if (!openConverters().find(converter, mapping))
        return paramErr;
    std::u16string text(inputLength / sizeof(UniChar), u'\0');
    if (!text.empty())
        std::memcpy(text.data(), input, text.size() * sizeof(UniChar));
    std::size_t read = 0, written = 0;
    OSStatus result = convert(*mapping.table, text, flags, {static_cast<char *>(output), outputCapacity}, read, written);
    *bytesRead = static_cast<ByteCount>(read * sizeof(UniChar));
    *bytesWritten = static_cast<ByteCount>(written);
    const bool endsInHalfAUnit = inputLength % sizeof(UniChar) != 0 && read == text.size();
    return endsInHalfAUnit ? kTextMalformedInputErr : result;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
