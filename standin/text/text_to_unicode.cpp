// Unicode from text of an encoding.
//
// A converter for the decomposed form gives each letter with a mark as two characters or more, the others the characters as the encoding has
// them. What belongs together is written whole or not at all. Conversion stops at the first thing that cannot be converted; what came before
// it is written and counted.
#include "standin/text/text_converters.h"
#include "standin/text/unicode_forms.h"

#include <cstring>
#include <new>
#include <string>

using namespace standin;

namespace
{

ConverterTable<TextToUnicodeInfo> &openConverters()
{
    static auto &table = *new ConverterTable<TextToUnicodeInfo>;   // threads may still convert when the others are gone
    return table;
}

OSStatus statusOf(CodeProblem problem)
{
    switch (problem)
    {
    case CodeProblem::none: return noErr;
    case CodeProblem::unassigned: return kTECUnmappableElementErr;
    case CodeProblem::badSecondByte: return kTextMalformedInputErr;
    case CodeProblem::breaksOff: return kTECPartialCharErr;
    }
    return paramErr;
}

// The characters of a code and of the marks behind it. `length` becomes the number of bytes they take.
OSStatus takeElement(const CodeTable &table, std::string_view text, OptionBits flags, std::u16string &element, std::size_t &length)
{
    TakenCode taken = takeCode(table, text);
    const bool isReplaced = taken.problem == CodeProblem::unassigned && (flags & useFallbacks);
    if (taken.problem != CodeProblem::none && !isReplaced)
        return statusOf(taken.problem);
    element.assign(1, taken.character);
    length = taken.length;
    while (length < text.size())
    {
        taken = takeCode(table, text.substr(length));
        if (taken.problem != CodeProblem::none || beginsAnew(taken.character))
            break;
        element.push_back(taken.character);
        length += taken.length;
    }
    return isReplaced ? kTECUsedFallbacksStatus : noErr;
}

struct Output
{
    UniChar *units;
    std::size_t capacity;   // of units
};

bool isAscii(char byte)
{
    return static_cast<std::uint8_t>(byte) < 0x80;
}

// Converts what needs no thought: codes of ASCII that no mark follows.
void convertPlainly(const CodeTable &table, std::string_view text, const Output &output, std::size_t &read, std::size_t &written)
{
    while (read < text.size() && written < output.capacity && isAscii(text[read]) && (read + 1 == text.size() || isAscii(text[read + 1])))
        output.units[written++] = table.characterOf(static_cast<std::uint8_t>(text[read++]));
}

// `read` counts bytes here, `written` units.
OSStatus convert(const Mapping &mapping, std::string_view text, OptionBits flags, const Output &output, std::size_t &read,
                 std::size_t &written)
{
    OSStatus result = noErr;
    std::u16string element;
    for (;;)
    {
        convertPlainly(*mapping.table, text, output, read, written);
        if (read == text.size())
            return result;
        std::size_t length = 0;
        const OSStatus status = takeElement(*mapping.table, text.substr(read), flags, element, length);
        if (status != noErr && status != kTECUsedFallbacksStatus)
            return status;
        if (mapping.decomposes)
            element = decomposed(element);
        if (element.size() > output.capacity - written)
            return kTECOutputBufferFullStatus;
        std::memcpy(output.units + written, element.data(), element.size() * sizeof(UniChar));
        read += length;
        written += element.size();
        result = status != noErr ? status : result;
    }
}

}   // namespace

OSStatus CreateTextToUnicodeInfo(const UnicodeMapping *mapping, TextToUnicodeInfo *converter)
try
{
    return createConverter(openConverters(), mapping, converter);
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSStatus DisposeTextToUnicodeInfo(TextToUnicodeInfo *converter)
try
{
    return disposeConverter(openConverters(), converter);
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

// Half a unit of room at the end of an odd capacity is left alone.
OSStatus ConvertFromTextToUnicode(TextToUnicodeInfo converter, ByteCount inputLength, const void *input, OptionBits flags,
                                  ItemCount offsetCount, const ByteOffset *, ItemCount *outputOffsetCount, ByteOffset *,
                                  ByteCount outputCapacity, ByteCount *bytesRead, ByteCount *bytesWritten, UniChar *output)
try
{
    if (!beginConversion({inputLength, input, offsetCount, outputOffsetCount, outputCapacity, bytesRead, bytesWritten, output}))
        return paramErr;
    Mapping mapping;
    if (!openConverters().find(converter, mapping))
        return paramErr;
    const std::string_view text = inputLength == 0 ? std::string_view() : std::string_view(static_cast<const char *>(input), inputLength);
    std::size_t read = 0, written = 0;
    const OSStatus result = convert(mapping, text, flags, {output, outputCapacity / sizeof(UniChar)}, read, written);
    *bytesRead = static_cast<ByteCount>(read);
    *bytesWritten = static_cast<ByteCount>(written * sizeof(UniChar));
    return result;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
