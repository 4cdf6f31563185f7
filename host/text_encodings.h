// The text encodings of Mac OS and some others, by the words that people type, by number and by name.
#pragma once

#include "platform/types.h"

#include <string>

namespace host
{

// "Mac Roman" and so on; empty for an encoding without a name here.
std::string nameOfEncoding(TextEncoding encoding);

// Reads a word such as "japanese", "system" for whatever the system's language asks for, or a number. Throws UsageError, which lists the words.
TextEncoding encodingFromText(const std::string &typed);

// All the words with commas between them, in lines for help.
std::string encodingWords();

}   // namespace host
