// The Script Manager, the converters between text encodings and Unicode, and numbers as text.

#pragma once

#include "platform/results.h"
#include "platform/types.h"

#pragma pack(push, 2)

struct UnicodeMapping
{
    TextEncoding unicodeEncoding, otherEncoding;
    SInt32 mappingVersion;
};

#pragma pack(pop)

// Variables of the Script Manager
constexpr SInt16 smSysScript = 18;
constexpr SInt16 smRegionCode = 40;

constexpr LangCode kTextLanguageDontCare = -128;
constexpr RegionCode kTextRegionDontCare = -128;

constexpr TextEncoding kTextEncodingMacRoman = 0;
constexpr TextEncoding kTextEncodingUnknown = 0xFFFF;   // as a hint: derive it from the system's script and region

constexpr OptionBits kUnicodeUseFallbacksMask = 0x01;
constexpr OptionBits kUnicodeLooseMappingsMask = 0x20;

#pragma GCC visibility push(default)
extern "C"
{

long GetScriptManagerVariable(SInt16 selector);

OSStatus UpgradeScriptInfoToTextEncoding(ScriptCode script, LangCode language, RegionCode region, ConstStr255Param fontName,
                                         TextEncoding *encoding);
TextEncoding CreateTextEncoding(UInt32 base, UInt32 variant, UInt32 format);
UInt32 GetTextEncodingBase(TextEncoding encoding);

OSStatus CreateUnicodeToTextInfo(const UnicodeMapping *mapping, UnicodeToTextInfo *converter);
OSStatus ConvertFromUnicodeToText(UnicodeToTextInfo converter, ByteCount inputLength, const UniChar *input, OptionBits flags,
                                  ItemCount offsetCount, const ByteOffset *offsets, ItemCount *outputOffsetCount, ByteOffset *outputOffsets,
                                  ByteCount outputCapacity, ByteCount *bytesRead, ByteCount *bytesWritten, void *output);
OSStatus DisposeUnicodeToTextInfo(UnicodeToTextInfo *converter);

OSStatus CreateTextToUnicodeInfo(const UnicodeMapping *mapping, TextToUnicodeInfo *converter);
OSStatus ConvertFromTextToUnicode(TextToUnicodeInfo converter, ByteCount inputLength, const void *input, OptionBits flags,
                                  ItemCount offsetCount, const ByteOffset *offsets, ItemCount *outputOffsetCount, ByteOffset *outputOffsets,
                                  ByteCount outputCapacity, ByteCount *bytesRead, ByteCount *bytesWritten, UniChar *output);
OSStatus DisposeTextToUnicodeInfo(TextToUnicodeInfo *converter);

void NumToString(SInt32 number, Str255 text);
void StringToNum(ConstStr255Param text, SInt32 *number);
}
#pragma GCC visibility pop
