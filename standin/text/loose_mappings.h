// Stand-ins for characters that an encoding lacks: the same sign in another width, another typographic form, or one taken apart.
#pragma once

#include <string>

namespace standin
{

// What a character may be written as where it has no code of its own and the caller asked for loose mappings: wide and narrow forms, spaces,
// hyphens and dashes, quotation marks, ligatures, signs that are twins of a letter (the ohm sign and omega). Accents are never dropped,
// nothing becomes a colon, which parts names, or a control character. Empty if there is nothing.
std::u16string looseFormOf(char32_t character);

}   // namespace standin
