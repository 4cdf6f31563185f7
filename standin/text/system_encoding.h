// The system's text encoding, Mac Roman, and the file system's two forms of Unicode text.
//
// Everything here is strict: a byte is exactly one character and a character is one byte or none, without substitutes or look-alikes.
// All functions may be called from any thread.
#pragma once

#include "platform/platform.h"

#include <string>
#include <string_view>

namespace standin
{

// The character of a byte of the system's encoding. Every byte has one.
UniChar unicodeFromSystemByte(UInt8 byte);

// The byte of a character. False if the encoding has none; `byte` is then untouched.
bool systemByteFromUnicode(UniChar unit, UInt8 &byte);

// Text of the system's encoding as UTF-16.
std::u16string unicodeFromSystemText(std::string_view text);

// UTF-16 as text of the system's encoding. A base letter with a separate accent is two characters here: compose first where that matters.
// False if any character has no byte; `text` is then untouched.
bool systemTextFromUnicode(std::u16string_view unicode, std::string &text);

// The file system decomposes canonically, but leaves U+2000..U+2FFF, U+F900..U+FAFF and U+2F800..U+2FAFF whole (so U+2260, "not equal", stays).
std::u16string decomposed(std::u16string_view unicode);

// The composed form, with the same ranges left alone: a character of them is neither replaced nor made ("=" and U+0338 stay two).
// So decomposed(composed(x)) == decomposed(x) for every x. Unpaired surrogates stay as they are in both forms.
std::u16string composed(std::u16string_view unicode);

}   // namespace standin
