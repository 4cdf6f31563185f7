// Scalars, length-prefixed strings and the opaque pointers of the platform.

#pragma once

#include <type_traits>

using SInt8 = signed char;
using UInt8 = unsigned char;
using SInt16 = short;
using UInt16 = unsigned short;
// `long` wherever it has 32 bits, because that is the type which then stands in exported C++ names.
using SInt32 = std::conditional_t<sizeof(long) == 4, long, int>;
using UInt32 = std::conditional_t<sizeof(long) == 4, unsigned long, unsigned int>;
using SInt64 = long long;
using UInt64 = unsigned long long;

using Boolean = unsigned char;   // 0 is false, anything else true
using OSErr = SInt16;            // 0 is success; see results.h
using OSStatus = SInt32;

using ItemCount = UInt32;
using ByteCount = UInt32;
using ByteOffset = UInt32;
using UniCharCount = UInt32;
using OptionBits = UInt32;
using TextEncoding = UInt32;
using OSType = UInt32;
using ResType = UInt32;
using FSCatalogInfoBitmap = UInt32;
using FSVolumeInfoBitmap = UInt32;
using FSIteratorFlags = UInt32;
using IconSelectorValue = UInt32;
using CFStringEncoding = UInt32;
using Size = long;
using CFIndex = long;

using FSVolumeRefNum = SInt16;
using ScriptCode = SInt16;
using LangCode = SInt16;
using RegionCode = SInt16;
using MenuID = SInt16;
using MenuItemIndex = UInt16;
using DialogItemIndex = SInt16;
using DialogItemType = SInt16;
using IconAlignmentType = SInt16;
using IconTransformType = SInt16;

using Ptr = char *;
using Handle = Ptr *;   // a pointer to the master pointer of a relocatable block

// Byte 0 holds the length, bytes 1 to length the characters.
using Str255 = unsigned char[256];
using Str63 = unsigned char[64];
using Str31 = unsigned char[32];
using Str27 = unsigned char[28];
using StringPtr = unsigned char *;
using ConstStr255Param = const unsigned char *;
using UniChar = UInt16;   // one UTF-16 code unit

// Pointers to incomplete structs and never `void *`: the tags stand in exported C++ names.
using WindowRef = struct OpaqueWindowPtr *;
using DialogRef = struct OpaqueDialogPtr *;
using GrafPtr = struct OpaqueGrafPtr *;
using CGrafPtr = GrafPtr;
using MenuRef = struct OpaqueMenuRef *;
using RgnHandle = struct OpaqueRgnHandle *;
using CTabHandle = struct OpaqueCTabHandle *;
using IconSuiteRef = struct OpaqueIconSuiteRef *;
using FSIterator = struct OpaqueFSIterator *;
using UnicodeToTextInfo = struct OpaqueUnicodeToTextInfo *;
using TextToUnicodeInfo = struct OpaqueTextToUnicodeInfo *;
using ModalFilterUPP = struct OpaqueModalFilterUPP *;
using QElemPtr = struct OpaqueQElemPtr *;
using IOCompletionUPP = struct OpaqueIOCompletionUPP *;

// Four characters as one code, the first in the highest byte: fourCharCode("TEXT").
constexpr OSType fourCharCode(const char (&characters)[5])
{
    OSType code = 0;
    for (int index = 0; index < 4; ++index)
        code = code << 8 | static_cast<UInt8>(characters[index]);
    return code;
}
