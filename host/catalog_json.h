// Pieces of catalog information for programs. Names and meanings of the members are described in the manual.
#pragma once

#include "host/catalog_reading.h"
#include "host/finder_flags.h"
#include "host/json_text.h"

#include "platform/types.h"

#include <span>

namespace host
{

const char *kindJson(Kind kind);          // "symbolic_link", with nothing to be put in quotes again
Json dateJson(const UTCDateTime &date);   // null for "never"
Json codeJson(OSType code);               // null if it cannot be printed
Json bitsJson(std::span<const NamedBit> table, UInt32 bits);
Json labelJson(UInt16 finderFlags);

// A result code: its number, its name or null, and its meaning.
Json resultJson(OSStatus result);

// An object that could not be looked at: its path and the result.
Json errorJson(const std::string &path, OSStatus result);

}   // namespace host
