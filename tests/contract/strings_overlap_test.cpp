// Source and destination in one piece of memory, at every distance: all bytes have to be what copying byte after byte
// makes of them. Each function is held against such a loop.

#include "tests/contract/strings_fixture.h"

#include <functional>
#include <random>
#include <vector>

namespace
{

// As the standard's strncpy works where nothing overlaps: up to a zero, and from there on zeros.
void strncpyByteAfterByte(unsigned char *destination, const unsigned char *source, int count)
{
    int index = 0;
    for (; index < count && source[index] != 0; ++index)
        destination[index] = source[index];
    for (; index < count; ++index)
        destination[index] = 0;
}

void copyCtoPstrByteAfterByte(unsigned char *destination, const unsigned char *source)
{
    int length = 0;
    while (source[length] != 0)
        ++length;
    destination[0] = static_cast<unsigned char>(length % 256);
    strncpyByteAfterByte(destination + 1, source, length % 256);
}

void copyPtoCstrByteAfterByte(unsigned char *destination, const unsigned char *source)
{
    const int length = source[0];
    strncpyByteAfterByte(destination, source + 1, length);
    destination[length] = 0;
}

void copyByteAfterByte(unsigned char *destination, const unsigned char *source)
{
    const int length = source[0];
    for (int index = 0; index <= length; ++index)
        destination[index] = source[index];
}

void copynByteAfterByte(unsigned char *destination, const unsigned char *source, short count)
{
    const int copied = count < source[0] ? count : source[0];
    for (int position = 1; position <= copied; ++position)
        destination[position] = source[position];
    destination[0] = static_cast<unsigned char>(copied);
}

void concatByteAfterByte(unsigned char *destination, const unsigned char *source)
{
    const int length = destination[0], added = source[0];
    for (int position = 1; position <= added; ++position)
        destination[length + position] = source[position];
    destination[0] = static_cast<unsigned char>(length + added);
}

void midByteAfterByte(unsigned char *destination, const unsigned char *source, short start, short count)
{
    destination[0] = 0;
    const int length = source[0];
    if (start > length || count <= 0)
        return;
    for (int position = 1; position <= count && start + position - 1 <= length; ++position)
    {
        destination[position] = source[start + position - 1];
        destination[0] = static_cast<unsigned char>(position);
    }
}

class StringsOverlap : public testing::Test
{
protected:
    using Action = std::function<void(unsigned char *destination, unsigned char *source)>;

    // Does both in equal memory, with the destination at very many distances on either side of the source: at all small
    // ones, and up to where the longest strings no longer touch.
    void compare(const std::vector<std::string> &sources, const Action &tested, const Action &byteAfterByte)
    {
        for (const std::string &source : sources)
        {
            source.copy(reinterpret_cast<char *>(memory.data() + middle), source.size());
            for (int distance = -520; distance <= 520; distance += distance < -24 || distance > 24 ? 31 : 1)
            {
                std::vector<unsigned char> expected = memory, actual = memory;
                byteAfterByte(expected.data() + middle + distance, expected.data() + middle);
                tested(actual.data() + middle + distance, actual.data() + middle);
                ASSERT_EQ(actual, expected) << "a source of " << source.size() << " bytes, the destination " << distance << " bytes on";
            }
        }
    }

    // Length-prefixed strings of all small and some large lengths, with or without zeros among the characters.
    std::vector<std::string> pascalStrings()
    {
        std::vector<std::string> strings;
        for (const std::size_t length : {0u, 1u, 2u, 3u, 4u, 5u, 7u, 8u, 9u, 15u, 16u, 17u, 31u, 33u, 100u, 254u, 255u})
        {
            strings.push_back(pascal(variedCharacters(length)));
            std::string withZeros = variedCharacters(length);
            for (char &character : withZeros)
                character = random() % 8 == 0 ? '\0' : character;
            strings.push_back(pascal(withZeros));
        }
        return strings;
    }

private:
    static constexpr int middle = 1100;

    static std::vector<unsigned char> memoryAtRandom(std::mt19937 &random)
    {
        std::vector<unsigned char> memory(3 * middle);
        for (unsigned char &byte : memory)
            byte = static_cast<unsigned char>(random() % 255 + 1);
        return memory;
    }

    std::mt19937 random{2005};   // every run the same
    std::vector<unsigned char> memory = memoryAtRandom(random);
};

TEST_F(StringsOverlap, CopyCtoPstr)
{
    std::vector<std::string> sources;
    for (const std::size_t length : {0u, 1u, 2u, 3u, 7u, 8u, 9u, 31u, 64u, 200u, 255u, 256u, 257u, 300u, 511u})
        sources.push_back(variedCharacters(length) + '\0');
    compare(
        sources, [](auto destination, auto source) { CopyCtoPstr(destination, reinterpret_cast<char *>(source)); },
        copyCtoPstrByteAfterByte);
}

TEST_F(StringsOverlap, CopyPtoCstr)
{
    compare(
        pascalStrings(), [](auto destination, auto source) { CopyPtoCstr(reinterpret_cast<char *>(destination), source); },
        copyPtoCstrByteAfterByte);
}

TEST_F(StringsOverlap, Copy)
{
    compare(
        pascalStrings(), [](auto destination, auto source) { Copy(destination, source); }, copyByteAfterByte);
}

TEST_F(StringsOverlap, Copyn)
{
    for (const short count : std::initializer_list<short>{-1, 0, 1, 5, 40, 255})
    {
        compare(
            pascalStrings(), [count](auto destination, auto source) { Copyn(destination, source, count); },
            [count](auto destination, auto source) { copynByteAfterByte(destination, source, count); });
    }
}

TEST_F(StringsOverlap, Concat)
{
    compare(
        pascalStrings(), [](auto destination, auto source) { Concat(destination, source); }, concatByteAfterByte);
}

TEST_F(StringsOverlap, Mid)
{
    for (const short start : std::initializer_list<short>{-3, 1, 2, 17})
    {
        for (const short count : std::initializer_list<short>{1, 5, 20, 300})
        {
            compare(
                pascalStrings(), [=](auto destination, auto source) { Mid(destination, source, start, count); },
                [=](auto destination, auto source) { midByteAfterByte(destination, source, start, count); });
        }
    }
}

}   // namespace
