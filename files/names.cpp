// Names between Unicode and the Mac OS encodings, and paths to and from the File Manager's own forms of a location.

#include "files/names.h"

#include "files/catalog.h"

namespace
{

// The Unicode side of every conversion, the same on every system.
constexpr UInt32 unicodeBase = 0x0103;
constexpr UInt32 unicodeVariant = 2;
constexpr UInt32 unicodeFormat = 0;
constexpr SInt32 mappingVersion = 4;

constexpr ByteCount longestFileName = 31;
constexpr ByteCount longestVolumeName = 27;

OSStatus encodingOf(ScriptCode script, RegionCode region, TextEncoding *encoding)
{
    return UpgradeScriptInfoToTextEncoding(script, kTextLanguageDontCare, region, nullptr, encoding);
}

TextEncoding systemEncoding()
{
    const ScriptCode script = static_cast<ScriptCode>(GetScriptManagerVariable(smSysScript));
    const RegionCode region = static_cast<RegionCode>(GetScriptManagerVariable(smRegionCode));
    TextEncoding encoding = kTextEncodingUnknown;
    OSStatus status = encodingOf(script, region, &encoding);
    if (status == paramErr)   // this script knows no such region
        status = encodingOf(script, kTextRegionDontCare, &encoding);
    return status == noErr ? encoding : kTextEncodingMacRoman;
}

UnicodeMapping mappingFor(TextEncoding hint)
{
    if (hint == kTextEncodingUnknown)
        hint = systemEncoding();
    UnicodeMapping mapping;
    mapping.unicodeEncoding = CreateTextEncoding(unicodeBase, unicodeVariant, unicodeFormat);
    mapping.otherEncoding = GetTextEncodingBase(hint);
    mapping.mappingVersion = mappingVersion;
    return mapping;
}

}   // namespace

OSErr UnicodeNameGetHFSName(UniCharCount nameLength, const UniChar *name, TextEncoding textEncodingHint, Boolean isVolumeName,
                            unsigned char *hfsName)
{
    if (hfsName == nullptr)
        return paramErr;
    hfsName[0] = 0;
    const ByteCount byteLength = nameLength * 2;   // in 32 bits: wraps around for lengths that no name has
    if (byteLength == 0)
        return noErr;

    const UnicodeMapping mapping = mappingFor(textEncodingHint);
    UnicodeToTextInfo converter;
    OSStatus status = CreateUnicodeToTextInfo(&mapping, &converter);
    if (status != noErr)
        return static_cast<OSErr>(status);

    const ByteCount capacity = isVolumeName ? longestVolumeName : longestFileName;
    ByteCount bytesRead, bytesWritten;
    status = ConvertFromUnicodeToText(converter, byteLength, name, kUnicodeLooseMappingsMask, 0, nullptr, nullptr, nullptr, capacity,
                                      &bytesRead, &bytesWritten, hfsName + 1);
    if (status == noErr)
        hfsName[0] = static_cast<unsigned char>(bytesWritten);
    DisposeUnicodeToTextInfo(&converter);   // its result says nothing about the name
    return static_cast<OSErr>(status);
}

OSErr HFSNameGetUnicodeName(const unsigned char *hfsName, TextEncoding textEncodingHint, HFSUniStr255 *unicodeName)
{
    if (unicodeName == nullptr)
        return paramErr;
    unicodeName->length = 0;
    if (hfsName[0] == 0)
        return noErr;

    const UnicodeMapping mapping = mappingFor(textEncodingHint);
    TextToUnicodeInfo converter;
    OSStatus status = CreateTextToUnicodeInfo(&mapping, &converter);
    if (status != noErr)
        return static_cast<OSErr>(status);

    ByteCount bytesRead, bytesWritten;
    status = ConvertFromTextToUnicode(converter, hfsName[0], hfsName + 1, 0, 0, nullptr, nullptr, nullptr, sizeof unicodeName->unicode,
                                      &bytesRead, &bytesWritten, unicodeName->unicode);
    if (status == noErr)
        unicodeName->length = static_cast<UInt16>(bytesWritten / 2);
    DisposeTextToUnicodeInfo(&converter);   // its result says nothing about the name
    return static_cast<OSErr>(status);
}

OSErr FSPathMakeFSSpec(const UInt8 *path, FSSpec *spec, Boolean *isDirectory)
{
    if (spec == nullptr)
        return paramErr;
    FSRef ref;
    const OSStatus status = FSPathMakeRef(path, &ref, isDirectory);
    if (status != noErr)
        return static_cast<OSErr>(status);
    return FSRefMakeFSSpec(&ref, spec);
}

OSErr FSMakePath(SInt16 volRefNum, SInt32 dirID, ConstStr255Param name, UInt8 *path, UInt32 maxPathSize)
{
    if (path == nullptr)
        return paramErr;
    FSRef ref;
    const OSErr result = FSMakeFSRef(volRefNum, dirID, name, &ref);
    if (result != noErr)
        return result;
    return static_cast<OSErr>(FSRefMakePath(&ref, path, maxPathSize));
}
