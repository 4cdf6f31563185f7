// The encodings of Core Foundation's strings: bytes ↔ UTF-16.
//
// Strict in both directions: text that is broken, or that the other side cannot say, is not converted at all. What is converted:
//   - UTF-8 (0x08000100), in its shortest form and without surrogates;
//   - UTF-16: in the machine's own byte order (0x0100), big-endian (0x10000100), little-endian (0x14000100). Any units, lone surrogates
//     too: names of files may hold them. There is no byte-order mark: one that is there is a character like any other;
//   - the encodings of the Macintosh, ISO and Windows that have a table (encodings.h), variants included. Towards them, a letter and its
//     accent may come composed or apart.
// All functions may be called from any thread.
#pragma once

#include "platform/platform.h"

#include <string>
#include <string_view>

namespace standin
{

// False if the bytes are no text of the encoding, or nothing is known of it; `unicode` is then untouched.
bool unicodeFromBytes(std::string_view bytes, CFStringEncoding encoding, std::u16string &unicode);

// False likewise; `bytes` is then untouched. No terminator is added.
bool bytesFromUnicode(std::u16string_view unicode, CFStringEncoding encoding, std::string &bytes);

// How many bytes end a C string of this encoding: a whole unit of zero.
std::size_t terminatorSize(CFStringEncoding encoding);

}   // namespace standin
