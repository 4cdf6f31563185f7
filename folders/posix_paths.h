// How a path with colons becomes what the File Manager takes: a path with slashes, or a parent folder and a name.
#pragma once

#include "platform/platform.h"

constexpr CFIndex posixPathSize = 512;
using PosixPath = char[posixPathSize];

// A name as FSCreateFileUnicode and FSCreateDirectoryUnicode take it.
struct UnicodeName
{
    UniCharCount length;
    UniChar characters[255];
};

// The path in UTF-8 with every ':' turned into '/'. Bytes that are said to be UTF-8 are taken as they are; those of any
// other encoding are converted, and what a failed conversion leaves is used as it stands.
void makePosixPath(ConstStr255Param path, CFStringEncoding encoding, PosixPath posixPath);

// Refers to what lies at the path.
OSStatus findByColonPath(ConstStr255Param path, CFStringEncoding encoding, FSRef *ref);

// Refers to the folder that a new object is to be made in, and gives the object's own name. Without any ':' the folder's
// path is empty, and the File Manager says what it thinks of that.
OSStatus findParentAndName(ConstStr255Param path, CFStringEncoding encoding, FSRef *parent, UnicodeName *name);
