// Strings and numbers beside the C and C++ libraries: `./bench`, or this program itself.
//
// Theirs gets the same bytes and does the same job: where a length stands in a byte, it is read from there.

#include "benchmarks/numbers_rows.h"
#include "benchmarks/ratio_table.h"
#include "strings/pstrings.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace
{

using Text = std::array<unsigned char, 520>;

// Shared by the copies that the table keeps of a row's functions.
using TextPointer = std::shared_ptr<Text>;

TextPointer textOf(const std::string &characters)
{
    auto text = std::make_shared<Text>();
    (*text)[0] = static_cast<unsigned char>(characters.size());
    characters.copy(reinterpret_cast<char *>(text->data() + 1), characters.size());
    return text;
}

// Letters that look like a text: every one of them comes again soon.
std::string letters(std::size_t count)
{
    std::string text;
    unsigned state = 7;
    for (std::size_t index = 0; index < count; ++index)
    {
        state = state * 1103515245 + 12345;
        text += "etaoin shrdlucmf"[state >> 16 & 15];
    }
    return text;
}

// A length as the compiler knows it where it comes out of a byte somewhere: not at all. (If it saw the byte, it would copy
// with instructions of its own, which are several times slower than the library.)
std::size_t lengthOf(const unsigned char *text)
{
    std::size_t length = text[0];
    benchmark::DoNotOptimize(length);
    return length;
}

std::string_view charactersOf(const unsigned char *text)
{
    return {reinterpret_cast<const char *>(text + 1), lengthOf(text)};
}

std::string named(const char *function, std::size_t size)
{
    return std::string(function) + ", " + std::to_string(size) + " bytes";
}

// A row that is in the one table unless its size is 128, which tells no more than its neighbours.
RatioRow floorRow(const std::string &function, std::size_t size, const char *theirs, double limit)
{
    return {named(function.c_str(), size), theirs, "", size == 128 ? TablePlace::none : TablePlace::floor, {limit, 0, "Strings"}};
}

double copyingLimit(std::size_t size)
{
    return size < 16 ? 0.9 : 1.1;
}

void addCopyingRows(std::size_t size)
{
    const TextPointer source = textOf(letters(size)), destination = textOf("");
    unsigned char *from = source->data(), *to = destination->data();
    const auto keep = [source, destination] {};

    addRow(
        {named("CopyCtoPstr", size), "strlen, memcpy", ""}, [=] { (void)keep, CopyCtoPstr(to, reinterpret_cast<char *>(from + 1)); },
        [=] {
            const std::size_t length = std::strlen(reinterpret_cast<char *>(from + 1));
            to[0] = static_cast<unsigned char>(length);
            std::memcpy(to + 1, from + 1, length);
        });
    addRow(
        {named("CopyPtoCstr", size), "strncpy", ""}, [=] { CopyPtoCstr(reinterpret_cast<char *>(to), from); },
        [=] {
            const std::size_t length = lengthOf(from);
            std::strncpy(reinterpret_cast<char *>(to), reinterpret_cast<char *>(from + 1), length);
            to[length] = 0;
        });
    addRow(
        floorRow("Copy", size, "memcpy", copyingLimit(size)), [=] { Copy(to, from); }, [=] { std::memcpy(to, from, lengthOf(from) + 1); });
    addRow(
        {named("Copyn", size), "memcpy", ""}, [=] { Copyn(to, from, static_cast<short>(size)); },
        [=] {
            const std::size_t length = std::min(lengthOf(from), size);
            std::memcpy(to + 1, from + 1, length);
            to[0] = static_cast<unsigned char>(length);
        });
    addRow(
        floorRow("Concat", size, "memcpy", copyingLimit(size)),
        [=] {
            to[0] = 5;
            Concat(to, from);
        },
        [=] {
            to[0] = 5;
            const std::size_t length = lengthOf(to), added = lengthOf(from);
            std::memcpy(to + length + 1, from + 1, added);
            to[0] = static_cast<unsigned char>(length + added);
        });
    addRow(
        {named("Mid", size), "string_view::copy", ""}, [=] { Mid(to, from, 2, static_cast<short>(size)); },
        [=] {
            const std::size_t length = charactersOf(from).copy(reinterpret_cast<char *>(to + 1), size, 1);
            to[0] = static_cast<unsigned char>(length);
        });
}

void addComparingRows(std::size_t size)
{
    const TextPointer first = textOf(letters(size)), second = textOf(letters(size)), third = textOf('z' + letters(size - 1)),
                      digits = textOf(std::string(size, '7'));
    unsigned char *a = first->data(), *b = second->data(), *differing = third->data(), *number = digits->data();
    const auto keep = [first, second, third, digits] {};

    addRow(
        floorRow("Comp, equal", size, "memcmp", 1.05), [=] { (void)keep, benchmark::DoNotOptimize(Comp(a, b)); },
        [=] { benchmark::DoNotOptimize(a[0] == b[0] && std::memcmp(a + 1, b + 1, lengthOf(a)) == 0); });
    addRow(
        floorRow("Pos, absent", size, "memchr", 1.1), [=] { benchmark::DoNotOptimize(Pos('z', a)); },
        [=] { benchmark::DoNotOptimize(std::memchr(a + 1, 'z', lengthOf(a))); });
    addRow(
        floorRow("Comp, first differs", size, "memcmp", 0.6), [=] { benchmark::DoNotOptimize(Comp(a, differing)); },
        [=] { benchmark::DoNotOptimize(a[0] == differing[0] && std::memcmp(a + 1, differing + 1, lengthOf(a)) == 0); });
    addRow(
        {named("AllisNum", size), "find_first_not_of", ""}, [=] { benchmark::DoNotOptimize(AllisNum(number)); },
        [=] { benchmark::DoNotOptimize(charactersOf(number).find_first_not_of("0123456789")); });
    addRow(
        {named("AllisNum", size), "all_of(isdigit)", ""}, [=] { benchmark::DoNotOptimize(AllisNum(number)); },
        [=] {
            const std::string_view characters = charactersOf(number);
            benchmark::DoNotOptimize(
                std::all_of(characters.begin(), characters.end(), [](unsigned char c) { return std::isdigit(c) != 0; }));
        });
}

void addSearchingRows(std::size_t size)
{
    const TextPointer haystack = textOf(letters(size));
    unsigned char *text = haystack->data();
    const auto keep = [haystack] {};
    for (const std::string &needle :
         {std::string("e"), std::string("in"), std::string("them"), std::string("cathodes"), std::string(32, 'e')})
    {
        if (needle.size() > size)
            continue;
        // The last character is nowhere in the text: looked for to the very end.
        const TextPointer shared = textOf(needle.substr(1) + "z");
        unsigned char *pattern = shared->data();
        const std::string name = "Posn, " + std::to_string(needle.size()) + " in";
        const bool isInTable = size == 255 && needle.size() > 1;
        addRow(
            {named(name.c_str(), size), "memmem", "", isInTable ? TablePlace::floor : TablePlace::none, {0.6, 0.6, "Strings"}},
            [=] { (void)keep, (void)shared, benchmark::DoNotOptimize(Posn(pattern, text)); },
            [=] { benchmark::DoNotOptimize(memmem(text + 1, lengthOf(text), pattern + 1, lengthOf(pattern))); });
        addRow(
            {named(name.c_str(), size), "string_view::find", "", isInTable ? TablePlace::peer : TablePlace::none},
            [=] { benchmark::DoNotOptimize(Posn(pattern, text)); },
            [=] { benchmark::DoNotOptimize(charactersOf(text).find(charactersOf(pattern))); });
        if (needle.size() == 4)
        {
            addRow(
                {named("PosnAt 3, 4 in", size), "string_view::find", ""}, [=] { benchmark::DoNotOptimize(PosnAt(pattern, text, 3)); },
                [=] { benchmark::DoNotOptimize(charactersOf(text).find(charactersOf(pattern), 2)); });
        }
    }
}

// The needle is in nowhere, and nearly everywhere.
void addHardSearchRow()
{
    const TextPointer haystack = textOf(std::string(255, 'a')), needle = textOf(std::string(16, 'a') + 'b' + std::string(15, 'a'));
    unsigned char *text = haystack->data(), *pattern = needle->data();
    const auto keep = [haystack, needle] {};
    addRow(
        {"Posn, hard, 32 in 255 bytes", "memmem", "", TablePlace::floor, {1.0, 0, "Strings"}},
        [=] { (void)keep, benchmark::DoNotOptimize(Posn(pattern, text)); },
        [=] { benchmark::DoNotOptimize(memmem(text + 1, lengthOf(text), pattern + 1, lengthOf(pattern))); });
}

// What the platform takes for measuring is in both.
void addWidthRows(std::size_t size)
{
    const TextPointer original = textOf(letters(size)), changed = textOf("");
    unsigned char *from = original->data(), *text = changed->data();
    const auto keep = [original, changed] {};
    const int fitting = StringWidth(from) + CharWidth(' '), half = fitting / 2;
    addRow(
        {named("AdjustStrWidth, fits", size), "the same calls", ""}, [=] { (void)keep, AdjustStrWidth(from, fitting); },
        [=] { benchmark::DoNotOptimize(StringWidth(from) <= fitting - CharWidth(' ')); });
    addRow(
        {named("AdjustStrWidth, cut", size), "the same loop", ""},
        [=] {
            std::memcpy(text, from, size + 1);
            AdjustStrWidth(text, half);
        },
        [=] {
            std::memcpy(text, from, size + 1);
            const int limit = half - CharWidth(' ');
            while (StringWidth(text) > limit)
                text[--text[0]] = 0xC9;
        });
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    const auto sizes = {8, 32, 128, 255};
    for (const auto addRows : {addCopyingRows, addComparingRows, addSearchingRows, addWidthRows})
    {
        for (const int size : sizes)
            addRows(static_cast<std::size_t>(size));
    }
    addHardSearchRow();
    addNumberRows();
    return runRatioTable(argumentCount, arguments);
}
