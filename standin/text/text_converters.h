// What the two converters between Unicode and text have in common: which mapping a converter was made for, the open ones, and what belongs
// together in a text.
#pragma once

#include "platform/platform.h"
#include "standin/text/code_table.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <string_view>

namespace standin
{

// What a converter knows. It has no state besides: nothing of one call is remembered for the next.
struct Mapping
{
    const CodeTable *table = nullptr;
    bool decomposes = false;   // Unicode is given in the file system's decomposed form, else as the encoding's table has it
};

// Result: noErr; paramErr for a null pointer; kTextUnsupportedEncodingErr if one side is no Unicode of 16-bit units that is known here, or the
// other has no table. `mapping` is written only on success.
OSStatus findMapping(const UnicodeMapping *wanted, Mapping &mapping);

// Open converters. They are numbers dressed as pointers, so that a closed one, or a wild one, is told from an open one.
template <typename Info>
class ConverterTable
{
public:
    Info open(const Mapping &mapping)
    {
        const std::lock_guard lock(mutex);
        mappings.emplace(nextNumber, mapping);
        return reinterpret_cast<Info>(nextNumber++);
    }

    bool find(Info converter, Mapping &mapping)
    {
        const std::lock_guard lock(mutex);
        const auto found = mappings.find(reinterpret_cast<std::uintptr_t>(converter));
        if (found == mappings.end())
            return false;
        mapping = found->second;
        return true;
    }

    bool close(Info converter)
    {
        const std::lock_guard lock(mutex);
        return mappings.erase(reinterpret_cast<std::uintptr_t>(converter)) > 0;
    }

private:
    std::mutex mutex;
    std::map<std::uintptr_t, Mapping> mappings;
    std::uintptr_t nextNumber = 1;
};

// The three calls on converters, alike in both directions. `table` is the one of the open ones.
template <typename Info>
OSStatus createConverter(ConverterTable<Info> &table, const UnicodeMapping *wanted, Info *converter)
{
    if (converter == nullptr)
        return paramErr;
    Mapping mapping;
    const OSStatus result = findMapping(wanted, mapping);
    if (result == noErr)
        *converter = table.open(mapping);
    return result;
}

// The caller's variable is made null, so that a second attempt is told from the first.
template <typename Info>
OSStatus disposeConverter(ConverterTable<Info> &table, Info *converter)
{
    if (converter == nullptr || !table.close(*converter))
        return paramErr;
    *converter = nullptr;
    return noErr;
}

// Flags of a conversion; all others change nothing.
constexpr OptionBits useFallbacks = kUnicodeUseFallbacksMask;
constexpr OptionBits looseMappings = kUnicodeLooseMappingsMask;

// What both conversions are given alike.
struct ConversionArguments
{
    ByteCount inputLength;
    const void *input;
    ItemCount offsetCount;
    ItemCount *outputOffsetCount;
    ByteCount outputCapacity;
    ByteCount *bytesRead, *bytesWritten;
    const void *output;
};

// Sets every count that there is to 0. False for a null pointer to something that is not empty, for a missing count, and for offsets:
// the places where a text's style changes are not followed through a conversion.
bool beginConversion(const ConversionArguments &arguments);

// All characters below the first mark begin something new.
constexpr char16_t firstMark = 0x0300;

// Whether a character begins something new: it composes with nothing before it.
bool beginsAnew(char32_t character);

// The units at the front that belong together: a letter and its marks, the parts of a Hangul syllable, or an unpaired surrogate alone.
// At least 1 if there is text.
std::size_t elementLength(std::u16string_view text);

}   // namespace standin
