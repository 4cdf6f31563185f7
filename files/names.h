// Names and paths. What holds for every function of the toolkit is told in files/fstoolkit.h.
//
// Both converters take a hint that says which Mac OS encoding the short name has. Only the base encoding of a hint counts.
// kTextEncodingUnknown (0xFFFF) asks for the encoding of the system's script and region; where the two give none, Mac
// Roman is meant, which is no error.
#pragma once

#include "platform/platform.h"

#pragma GCC visibility push(default)
extern "C"
{

// Converts a Unicode name to a short name, as the older calls of the File Manager want it.
//
// `nameLength` counts UTF-16 units and `name` points to them. `hfsName` is a length-prefixed string with room for 31
// bytes of text, or for 27 if `isVolumeName` is true. A character that has no exact counterpart may become a similar one.
// A name that does not fit is not shortened: it fails with the converter's own code, kTECOutputBufferFullStatus (-8785).
//
// `hfsName` is made empty first. After any failure its length byte is 0, and the bytes after that hold whatever the
// converter left there. An empty name gives an empty name: the system's script and the text converter are not asked, and
// `name` may be null. The length in bytes is `nameLength` times 2 in 32 bits, so that a `nameLength` of 0x80000000 is
// empty too.
//
// Result: noErr; paramErr if `hfsName` is null; otherwise the code of CreateUnicodeToTextInfo or
// ConvertFromUnicodeToText, cut to 16 bits.
OSErr UnicodeNameGetHFSName(UniCharCount nameLength, const UniChar *name, TextEncoding textEncodingHint, Boolean isVolumeName,
                            unsigned char *hfsName);

// Converts a short name to a Unicode name.
//
// `hfsName` is a length-prefixed string, of a volume, a file or a folder, and is only read. `unicodeName` gets at most
// 255 UTF-16 units.
//
// The length of `unicodeName` is made 0 first and is 0 after any failure; the units after it hold then whatever the
// converter left there. An empty name gives an empty name, and neither the system's script nor the text converter is
// asked.
//
// Result: noErr; paramErr if `unicodeName` is null; otherwise the code of CreateTextToUnicodeInfo or
// ConvertFromTextToUnicode, cut to 16 bits.
OSErr HFSNameGetUnicodeName(const unsigned char *hfsName, TextEncoding textEncodingHint, HFSUniStr255 *unicodeName);

// Gives the FSSpec (volume, parent directory ID and short name) of the object at a path.
//
// `path` is a POSIX path in UTF-8, ended by a zero byte; the object must exist. `isDirectory`, which may be null, is
// handed to FSPathMakeRef as it is and becomes 1 for a folder and 0 for a file. It is written as soon as the path has led
// to an object, so it may hold the answer although the FSSpec could then not be made.
//
// Result: noErr; paramErr if `spec` is null, whatever the path; otherwise the code of FSPathMakeRef, cut to 16 bits, or
// of FSGetCatalogInfo.
OSErr FSPathMakeFSSpec(const UInt8 *path, FSSpec *spec, Boolean *isDirectory);

// Gives the path of the object called `name` in the directory `dirID` of the volume `volRefNum`.
//
// The three are read as by FSMakeFSRef; with a null `name` the path is that of the directory itself. `path` gets a POSIX
// path in UTF-8 with its terminating zero byte, all of which must fit into `maxPathSize` bytes. The size is handed to
// FSRefMakePath as it is, 0 included, and that call alone says whether it is enough.
//
// Result: noErr; paramErr if `path` is null; otherwise the code of PBMakeFSRefSync, or of FSRefMakePath cut to 16 bits.
OSErr FSMakePath(SInt16 volRefNum, SInt32 dirID, ConstStr255Param name, UInt8 *path, UInt32 maxPathSize);
}
#pragma GCC visibility pop
