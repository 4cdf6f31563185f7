// The file system's two forms of Unicode text. All functions may be called from any thread.
#pragma once

#include <string>
#include <string_view>

namespace standin
{

// The file system decomposes canonically, but leaves U+2000..U+2FFF, U+F900..U+FAFF and U+2F800..U+2FAFF whole (so U+2260, "not equal", stays).
std::u16string decomposed(std::u16string_view unicode);

// The composed form, with the same ranges left alone: a character of them is neither replaced nor made ("=" and U+0338 stay two).
// So decomposed(composed(x)) == decomposed(x) for every x. Unpaired surrogates stay as they are in both forms.
std::u16string composed(std::u16string_view unicode);

// Whether these forms of a text can be told. False if the text needs the part that knows characters beyond ASCII and that cannot be loaded:
// then the text is given as it is.
bool canDecompose(std::u16string_view unicode);
bool canCompose(std::u16string_view unicode);

}   // namespace standin
