// Names on disk ↔ the platform's names.
//
// A disk name is any string of 1 to 255 bytes without '/' and NUL. Every disk name has exactly one Unicode name and comes back from it
// to the same bytes:
//   - valid UTF-8 becomes its UTF-16 units, with ':' and '/' exchanged;
//   - an encoded surrogate outside DC80..DCFF becomes that lone surrogate, unless it is a leading one and a trailing one follows in the result;
//   - any other byte b becomes the unit 0xDC00 + b.
// What follows a leading surrogate may itself be raw units, which are trailing surrogates: of the bytes ED A0 80 FF none is text.
//
// The functions keep nothing between calls and may be called from any thread.
#pragma once

#include "platform/platform.h"

#include <string>
#include <string_view>
#include <vector>

namespace standin
{

constexpr std::size_t longestDiskName = 255;
constexpr std::size_t longestShortName = 31;   // of an FSSpec or a parameter block
constexpr int fewestHashDigits = 6;            // of a short form
constexpr int mostHashDigits = 16;

// The Unicode name of a disk name. It never has more units than the name has bytes; bytes past the 255th are not looked at.
void unicodeFromDiskName(std::string_view diskName, HFSUniStr255 &name);

// The disk name that is exactly this Unicode name, without composing anything.
// Result: noErr; errFSMissingName if empty or null; bdNamErr if it holds ':' or NUL, is "." or "..", or does not survive the round trip;
// errFSNameTooLong if it takes more than 255 units or bytes on disk. `diskName` is written only on success.
OSErr diskNameFromUnicode(const UniChar *units, std::size_t count, std::string &diskName);

// The disk name under which a new object of this name is stored: precomposed where that survives the round trip.
// A name that is too long as it stands is stored if it fits composed. Results as above, and paramErr if its forms cannot be told
// (unicode_forms.h).
OSErr storedNameFromUnicode(const UniChar *units, std::size_t count, std::string &diskName);

// The disk names to try for a look-up, best first and without repetition: exact bytes, composed, decomposed.
// A form that is too long is left out. Results as above, of the exact bytes if no form is possible; paramErr if its forms cannot be told.
OSErr lookupNamesFromUnicode(const UniChar *units, std::size_t count, std::vector<std::string> &diskNames);

// The same for a Pascal string in the system's encoding. It may be longer than 31 bytes: the length that a volume allows is the disk's business.
// Bytes that are no text of that encoding (there are none in Mac Roman): bdNamErr.
OSErr lookupNamesFromPascal(ConstStr255Param name, std::vector<std::string> &diskNames);
OSErr storedNameFromPascal(ConstStr255Param name, std::string &diskName);

// Tries to say a disk name in the system's encoding in at most 31 bytes, so that lookupNamesFromPascal gives it back among its candidates.
// It need not be the first of them: where a folder holds the composed and the decomposed form of one name, both get this short name.
// False if it does not fit or does not convert; `name` is then untouched.
bool plainShortName(std::string_view diskName, Str63 name);

// The short form `begin#1A2B3C.ext` of a disk name: as much of its beginning as fits, '#', `digits` (6 to 16) hexadecimal digits of a
// hash of its bytes, and its extension where that is at most 5 bytes with its dot. Characters outside the system's encoding read '_'.
// At most 31 bytes, always possible, never equal for different digits. Users see these names: what a disk name gives in one encoding of the
// system never changes.
// More digits continue fewer ones. The hash is no secret: names can be made to collide, up to all 16 digits.
void hashedShortName(std::string_view diskName, int digits, Str63 name);

// The number of hash digits if a Pascal string looks like a hashed short form, else 0. Only a hint: the folder decides.
int hashDigitsOf(ConstStr255Param name);

// A sidecar's name is `._` and the name of its file; a volume's root keeps its own inside, as `._.`.
std::string sidecarNameOf(std::string_view diskName);
bool hasRoomForSidecar(std::string_view diskName);   // at most 253 bytes
bool looksLikeSidecar(std::string_view diskName);    // `._` and at least one byte more

}   // namespace standin
