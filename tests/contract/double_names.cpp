#include "tests/contract/double_names.h"

#include "tests/contract/platform_double.h"

namespace
{

// The only Unicode side that converters are made for.
constexpr TextEncoding decomposedUnicode = 0x0103 | 2u << 16;
constexpr SInt32 knownMappingVersion = 4;

unsigned shiftOf(const ConverterObject &converter)
{
    return converter.encoding == NamesDouble::shifted ? 1 : 0;
}

OSStatus noteMapping(const char *callName, const UnicodeMapping *mapping, const std::string &output)
{
    return PlatformDouble::current().recordStatus(callName, {field("unicodeEncoding", hex(mapping->unicodeEncoding)),
                                                             field("otherEncoding", hex(mapping->otherEncoding)),
                                                             field("mappingVersion", decimal(mapping->mappingVersion)), output});
}

}   // namespace

std::string NamesDouble::describe(const void *converter, bool isFromUnicode) const
{
    for (const ConverterObject &each : openConverters)
        if (&each == converter && each.isFromUnicode == isFromUnicode)
            return "converter " + hex(each.encoding);
    return "converter ?";
}

ConverterObject *NamesDouble::find(const void *converter, bool isFromUnicode)
{
    for (ConverterObject &each : openConverters)
        if (&each == converter && each.isFromUnicode == isFromUnicode)
            return &each;
    return nullptr;
}

ConverterObject *NamesDouble::open(const UnicodeMapping &mapping, bool isFromUnicode)
{
    const bool isKnownEncoding = mapping.otherEncoding == kTextEncodingMacRoman || mapping.otherEncoding == shifted;
    if (!isKnownEncoding || mapping.unicodeEncoding != decomposedUnicode || mapping.mappingVersion != knownMappingVersion)
        return nullptr;
    openConverters.push_back({isFromUnicode, mapping.otherEncoding});
    return &openConverters.back();
}

OSStatus NamesDouble::close(const void *converter, bool isFromUnicode)
{
    if (find(converter, isFromUnicode) == nullptr)
        return paramErr;
    openConverters.remove_if([converter](const ConverterObject &each) { return &each == converter; });
    return noErr;
}

long GetScriptManagerVariable(SInt16 selector)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("GetScriptManagerVariable", {decimal(selector)});
    switch (selector)
    {
    case smSysScript: return platform.names.systemScript;
    case smRegionCode: return platform.names.systemRegion;
    default: return 0;
    }
}

OSStatus UpgradeScriptInfoToTextEncoding(ScriptCode script, LangCode language, RegionCode region, ConstStr255Param fontName,
                                         TextEncoding *encoding)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSStatus failure =
        platform.recordStatus("UpgradeScriptInfoToTextEncoding", {decimal(script), decimal(language), decimal(region), quoted(fontName),
                                                                  platform.pointer(encoding, "encoding")});
    if (failure != noErr)
        return failure;
    const auto answer = platform.names.scriptAnswers.find({script, region});
    if (answer == platform.names.scriptAnswers.end())
        return paramErr;
    *encoding = answer->second.encoding;
    return answer->second.status;
}

TextEncoding CreateTextEncoding(UInt32 base, UInt32 variant, UInt32 format)
{
    PlatformDouble::current().note("CreateTextEncoding", {hex(base), decimal(variant), decimal(format)});
    return base | variant << 16 | format << 26;
}

UInt32 GetTextEncodingBase(TextEncoding encoding)
{
    PlatformDouble::current().note("GetTextEncodingBase", {hex(encoding)});
    return encoding & 0xFFFF;
}

OSStatus CreateUnicodeToTextInfo(const UnicodeMapping *mapping, UnicodeToTextInfo *converter)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSStatus failure = noteMapping("CreateUnicodeToTextInfo", mapping, platform.pointer(converter, "converter"));
    if (failure != noErr)
        return failure;
    *converter = reinterpret_cast<UnicodeToTextInfo>(platform.names.open(*mapping, true));
    return *converter == nullptr ? kTextUnsupportedEncodingErr : OSStatus{noErr};
}

OSStatus ConvertFromUnicodeToText(UnicodeToTextInfo converter, ByteCount inputLength, const UniChar *input, OptionBits flags,
                                  ItemCount offsetCount, const ByteOffset *offsets, ItemCount *outputOffsetCount, ByteOffset *outputOffsets,
                                  ByteCount outputCapacity, ByteCount *bytesRead, ByteCount *bytesWritten, void *output)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSStatus failure =
        platform.recordStatus("ConvertFromUnicodeToText",
                              {platform.names.describe(converter, true), decimal(inputLength), platform.pointer(input, "name"), hex(flags),
                               decimal(offsetCount), platform.pointer(offsets, "offsets"), platform.pointer(outputOffsetCount, "count"),
                               platform.pointer(outputOffsets, "offsets"), decimal(outputCapacity), platform.pointer(bytesRead, "read"),
                               platform.pointer(bytesWritten, "written"), platform.pointer(output, "text")});
    if (failure != noErr)
        return failure;

    const ConverterObject *open = platform.names.find(converter, true);
    if (open == nullptr)
        return paramErr;
    UInt8 *const text = static_cast<UInt8 *>(output);
    for (*bytesRead = *bytesWritten = 0; *bytesRead < inputLength; *bytesRead += 2)
    {
        if (*bytesWritten == outputCapacity)
            return kTECOutputBufferFullStatus;
        const unsigned byte = input[*bytesRead / 2] - shiftOf(*open);
        if (byte > 0xFF)
            return kTECUnmappableElementErr;
        text[(*bytesWritten)++] = static_cast<UInt8>(byte);
    }
    return noErr;
}

OSStatus DisposeUnicodeToTextInfo(UnicodeToTextInfo *converter)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSStatus failure = platform.recordStatus("DisposeUnicodeToTextInfo", {platform.names.describe(*converter, true)});
    const OSStatus result = platform.names.close(*converter, true);   // one whose disposal fails is gone all the same
    return failure != noErr ? failure : result;
}

OSStatus CreateTextToUnicodeInfo(const UnicodeMapping *mapping, TextToUnicodeInfo *converter)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSStatus failure = noteMapping("CreateTextToUnicodeInfo", mapping, platform.pointer(converter, "converter"));
    if (failure != noErr)
        return failure;
    *converter = reinterpret_cast<TextToUnicodeInfo>(platform.names.open(*mapping, false));
    return *converter == nullptr ? kTextUnsupportedEncodingErr : OSStatus{noErr};
}

OSStatus ConvertFromTextToUnicode(TextToUnicodeInfo converter, ByteCount inputLength, const void *input, OptionBits flags,
                                  ItemCount offsetCount, const ByteOffset *offsets, ItemCount *outputOffsetCount, ByteOffset *outputOffsets,
                                  ByteCount outputCapacity, ByteCount *bytesRead, ByteCount *bytesWritten, UniChar *output)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSStatus failure =
        platform.recordStatus("ConvertFromTextToUnicode",
                              {platform.names.describe(converter, false), decimal(inputLength), platform.pointer(input, "text"), hex(flags),
                               decimal(offsetCount), platform.pointer(offsets, "offsets"), platform.pointer(outputOffsetCount, "count"),
                               platform.pointer(outputOffsets, "offsets"), decimal(outputCapacity), platform.pointer(bytesRead, "read"),
                               platform.pointer(bytesWritten, "written"), platform.pointer(output, "name")});
    if (failure != noErr)
        return failure;

    const ConverterObject *open = platform.names.find(converter, false);
    if (open == nullptr)
        return paramErr;
    const UInt8 *const text = static_cast<const UInt8 *>(input);
    for (*bytesRead = *bytesWritten = 0; *bytesRead < inputLength; *bytesWritten += 2)
    {
        if (*bytesWritten + 2 > outputCapacity)
            return kTECOutputBufferFullStatus;
        output[*bytesWritten / 2] = static_cast<UniChar>(text[(*bytesRead)++] + shiftOf(*open));
    }
    return noErr;
}

OSStatus DisposeTextToUnicodeInfo(TextToUnicodeInfo *converter)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSStatus failure = platform.recordStatus("DisposeTextToUnicodeInfo", {platform.names.describe(*converter, false)});
    const OSStatus result = platform.names.close(*converter, false);
    return failure != noErr ? failure : result;
}
