// The system's text encoding: names of FSSpecs and parameter blocks are in it.
//
// It is the one that script and region of the process's locale decide (script_manager.h): Mac Roman for western locales and where there is no
// locale, Mac Japanese for ja_JP. It never changes while the process lives.
//
// Everything here is strict: no substitutes and no look-alikes. All functions may be called from any thread.
#pragma once

#include "standin/text/unicode_forms.h"

#include "platform/platform.h"

#include <string>
#include <string_view>

namespace standin
{

TextEncoding systemEncoding();

// Text of the system's encoding as UTF-16, each code as its character. In Mac Roman every byte has one.
// False if any code has none or breaks off; `unicode` is then untouched.
bool unicodeFromSystemText(std::string_view text, std::u16string &unicode);

// UTF-16 as text of the system's encoding. A base letter with a separate accent is two characters here: compose first where that matters.
// False if any character has no code; `text` is then untouched.
bool systemTextFromUnicode(std::u16string_view unicode, std::string &text);

}   // namespace standin
