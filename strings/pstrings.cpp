// Length-prefixed strings: copied, joined, cut, searched, compared and fitted to a width.
//
// What every copy has to give is what a loop over single bytes in ascending order gives, also where source and
// destination overlap. The standard library's block functions are used where that is provably the same.

#include "strings/pstrings.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace
{

constexpr unsigned char ellipsis = 0xC9;   // in Mac Roman

unsigned char lowByte(std::size_t number)
{
    return static_cast<unsigned char>(number & 0xFF);
}

// The distance upwards from one address to another; what lies below is very far.
std::size_t distance(const void *from, const void *to)
{
    return reinterpret_cast<std::uintptr_t>(to) - reinterpret_cast<std::uintptr_t>(from);
}

bool apart(const void *a, std::size_t sizeOfA, const void *b, std::size_t sizeOfB)
{
    return distance(a, b) >= sizeOfA && distance(b, a) >= sizeOfB;
}

// Copies in ascending order. Only a destination that begins inside the source is written before it is read.
void copyAscending(unsigned char *destination, const unsigned char *source, std::size_t count)
{
    if (distance(source, destination) >= count)
    {
        std::memmove(destination, source, count);
        return;
    }
    for (std::size_t index = 0; index < count; ++index)
        destination[index] = source[index];
}

// As std::strncpy, which itself must not be given ranges that overlap.
void copyUntilZero(unsigned char *destination, const unsigned char *source, std::size_t count)
{
    if (apart(destination, count, source, count))
    {
        std::strncpy(reinterpret_cast<char *>(destination), reinterpret_cast<const char *>(source), count);
        return;
    }
    std::size_t index = 0;
    for (; index < count && source[index] != 0; ++index)
        destination[index] = source[index];
    for (; index < count; ++index)
        destination[index] = 0;
}

// ---- Search, eight bytes at a time

constexpr std::uint64_t everyByte(unsigned value)
{
    return value * 0x0101010101010101u;
}

std::uint64_t eightBytes(const unsigned char *bytes)
{
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

bool hasZeroByte(std::uint64_t word)
{
    return ((word - everyByte(0x01)) & ~word & everyByte(0x80)) != 0;
}

bool eightDigits(std::uint64_t word)
{
    const std::uint64_t highHalves = everyByte(0xF0);
    return ((word & highHalves) | ((word + everyByte(0x06)) & highHalves) >> 4) == everyByte(0x33);
}

struct Pattern
{
    const unsigned char *characters;
    std::size_t length;   // not 0

    unsigned char first() const { return characters[0]; }
    unsigned char last() const { return characters[length - 1]; }

    bool isAt(const unsigned char *place) const
    {
        return *place == first() && place[length - 1] == last() && std::memcmp(place, characters, length) == 0;
    }
};

// The first index from `begin` up to `end` (not included) where the pattern stands in the text, or `end`.
int indexOneByOne(const Pattern &pattern, const unsigned char *text, int begin, int end)
{
    while (begin < end && !pattern.isAt(text + begin))
        ++begin;
    return begin;
}

int indexOfByte(unsigned char byte, const unsigned char *text, int begin, int end)
{
    const void *place = std::memchr(text + begin, byte, static_cast<std::size_t>(end - begin));
    return place == nullptr ? end : static_cast<int>(static_cast<const unsigned char *>(place) - text);
}

// The same, eight places at a time: most often neither the first nor the last character fits at any of them.
int indexOf(const Pattern &pattern, const unsigned char *text, int begin, int end)
{
    begin = indexOfByte(pattern.first(), text, begin, end);
    if (pattern.length == 1 || begin == end)
        return begin;
    const std::uint64_t first = everyByte(pattern.first()), last = everyByte(pattern.last());
    for (; end - begin >= 8; begin += 8)
    {
        const unsigned char *place = text + begin;
        if (!hasZeroByte((eightBytes(place) ^ first) | (eightBytes(place + pattern.length - 1) ^ last)))
            continue;
        const int index = indexOneByOne(pattern, text, begin, begin + 8);
        if (index < begin + 8)
            return index;
    }
    return indexOneByOne(pattern, text, begin, end);
}

short positionFrom(const unsigned char *pattern, const unsigned char *text, short start)
{
    const int end = text[0] - pattern[0] + 2;   // behind the last place where the pattern has room
    if (end < 2 || start >= end)
        return 0;
    // An empty pattern is not treated specially: the byte behind its length byte counts as its one character.
    const Pattern wanted = {pattern + 1, std::max<std::size_t>(pattern[0], 1)};
    int index = indexOf(wanted, text, start, end);
    if (index == 0)   // no position, so that this match does not count
        index = indexOf(wanted, text, 1, end);
    return index == end ? short{0} : static_cast<short>(index);
}

}   // namespace

void CopyCtoPstr(unsigned char *destination, char const *source)
{
    const unsigned char count = lowByte(std::strlen(source));
    destination[0] = count;
    // There is no zero among these bytes, so that this is what strncpy would copy; nor is the count just written one.
    copyAscending(destination + 1, reinterpret_cast<const unsigned char *>(source), count);
}

void CopyPtoCstr(char *destination, unsigned char const *source)
{
    const std::size_t length = source[0];
    copyUntilZero(reinterpret_cast<unsigned char *>(destination), source + 1, length);
    destination[length] = 0;
}

long Val(unsigned char const *text)
{
    SInt32 value = 0;
    StringToNum(text, &value);
    return value;
}

short Valc(char c)
{
    return static_cast<short>(c >= '0' && c <= '9' ? c - '0' : 0);
}

void Str(unsigned char *destination, long value)
{
    NumToString(static_cast<SInt32>(value), destination);
}

void AdjustStrWidth(unsigned char *text, int width)
{
    // Unsigned, since 32-bit arithmetic wraps around.
    const int limit = static_cast<int>(static_cast<unsigned>(width) - static_cast<unsigned>(CharWidth(' ')));
    if (StringWidth(text) <= limit)
        return;
    while (text[0] != 0)
    {
        --text[0];
        // With no character left this is the length byte itself: cutting goes on from 201. It is meant.
        text[text[0]] = ellipsis;
        if (StringWidth(text) <= limit)
            break;
    }
    if (text[0] == 1)   // an ellipsis never stands alone
        text[0] = 0;
}

short Pos(char c, unsigned char const *text)
{
    // A signed character against unsigned bytes: what is negative is never found.
    const signed char wanted = static_cast<signed char>(c);
    if (wanted < 0)
        return 0;
    const int end = text[0] + 1;
    const int index = indexOfByte(static_cast<unsigned char>(wanted), text, 1, end);
    return index == end ? short{0} : static_cast<short>(index);
}

short Posn(unsigned char const *pattern, unsigned char const *text)
{
    return positionFrom(pattern, text, 1);
}

short PosnAt(unsigned char const *pattern, unsigned char const *text, short start)
{
    return positionFrom(pattern, text, start);
}

void Copy(unsigned char *destination, unsigned char const *source)
{
    copyAscending(destination, source, source[0] + std::size_t{1});
}

void Copyn(unsigned char *destination, unsigned char const *source, short count)
{
    const int copied = std::min<int>(count, source[0]);
    if (copied > 0)
        copyAscending(destination + 1, source + 1, static_cast<std::size_t>(copied));
    destination[0] = static_cast<unsigned char>(copied & 0xFF);   // of a negative count too
}

Boolean Comp(unsigned char const *a, unsigned char const *b)
{
    return a[0] == b[0] && std::memcmp(a + 1, b + 1, a[0]) == 0;
}

void Concat(unsigned char *destination, unsigned char const *source)
{
    const std::size_t length = destination[0], added = source[0];
    copyAscending(destination + length + 1, source + 1, added);
    destination[0] = lowByte(length + added);
}

void Mid(unsigned char *destination, unsigned char const *source, short start, short count)
{
    destination[0] = 0;   // before the source's length is read, which may be the same byte
    const int sourceLength = source[0];
    if (start > sourceLength || count <= 0)
        return;
    const std::size_t copied = static_cast<std::size_t>(std::min<int>(count, sourceLength - start + 1));
    const unsigned char *characters = source + start;
    if (apart(destination, copied + 1, characters, copied))
    {
        std::memcpy(destination + 1, characters, copied);
        destination[0] = lowByte(copied);
        return;
    }
    for (std::size_t position = 1; position <= copied; ++position)
    {
        destination[position] = characters[position - 1];
        destination[0] = lowByte(position);
    }
}

Boolean AllisNum(unsigned char *text)
{
    const int length = text[0];
    int position = 1;
    for (; position + 7 <= length; position += 8)
    {
        if (!eightDigits(eightBytes(text + position)))
            return 0;
    }
    for (; position <= length; ++position)
    {
        if (text[position] < '0' || text[position] > '9')
            return 0;
    }
    return length != 0;
}
