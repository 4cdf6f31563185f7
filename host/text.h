// Text as the host meets it: bytes of paths, UTF-16 units of names, Mac Roman of codes and short names; and what of it may be printed.
//
// A name on disk is any bytes. Its Unicode name follows the file manager's rule: valid UTF-8 becomes its units; an encoded surrogate outside
// DC80..DCFF becomes that lone surrogate, unless it would make a pair with what follows; any other byte b becomes the unit 0xDC00 + b. Both
// directions here keep that rule, so that nothing is lost between a path, a name and what is printed of them.
#pragma once

#include "platform/platform.h"

#include <optional>
#include <string>
#include <string_view>

namespace host
{

std::u16string unitsFromBytes(std::string_view bytes);
std::string bytesFromUnits(std::u16string_view units);

// The name as bytes, after the same rule.
std::string bytesFromName(const HFSUniStr255 &name);

// The units of one component of a path, with ':' and '/' exchanged, as a name. Empty if it is longer than a name can be.
std::optional<HFSUniStr255> nameFromPathComponent(std::string_view component);

// The other way.
std::string pathComponentFromName(const HFSUniStr255 &name);

std::string utf8FromMacRoman(std::string_view macRoman);

// Empty if a character has no place in Mac Roman or the text is not UTF-8. Decomposed letters are composed first.
std::optional<std::string> macRomanFromUtf8(std::string_view text);

std::string utf8FromPascal(ConstStr255Param text);

// Safe to print on a terminal, on one line: bytes that are no UTF-8 become \xNN; control characters, line ends and characters that turn the
// direction of writing become \xNN or \u{NNNN}; a backslash is doubled.
std::string printable(std::string_view bytes);

// Whether the bytes are printable as they are, as those of most names: ASCII without control characters and backslashes.
bool isPlainAscii(std::string_view bytes);

// How many columns printable text takes, near enough for lining up: one for every code point.
std::size_t columnsOf(std::string_view printableText);

// The text as a JSON string with its quotes, in ASCII alone. Every unit that is no character of its own, lone surrogates included, becomes \uXXXX:
// bytes that are no UTF-8 come out as \udcNN and can be read back without loss.
std::string jsonString(std::string_view bytes);

}   // namespace host
