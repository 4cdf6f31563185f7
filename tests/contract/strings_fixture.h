// What the tests of strings and numbers share.

#pragma once

#include "strings/pstrings.h"
#include "tests/contract/platform_double.h"
#include "tests/contract/rows.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

// A length-prefixed string as a row of bytes: its length and its characters.
inline std::string pascal(const std::string &characters)
{
    return static_cast<char>(static_cast<unsigned char>(characters.size())) + characters;
}

// The string at this place as a row of characters.
inline std::string charactersOf(const unsigned char *text)
{
    return std::string(reinterpret_cast<const char *>(text + 1), text[0]);
}

// Room for a text among bytes that all differ from their neighbours: shows which bytes have been written, before the text,
// in it and behind it.
class Buffer
{
public:
    // The bytes stand at the beginning of the text; a length-prefixed string among them begins with its length.
    explicit Buffer(const std::string &bytes = {})
    {
        for (std::size_t index = 0; index < area.size(); ++index)
            area[index] = static_cast<unsigned char>(index * 151 + 77);
        put(area, bytes);
        original = area;
    }

    unsigned char *text() { return area.data() + front; }
    char *characters() { return reinterpret_cast<char *>(text()); }

    // Whether the text now begins with these bytes and every other byte is what it was at the start.
    testing::AssertionResult holds(const std::string &bytes) const
    {
        Area expected = original;
        put(expected, bytes);
        for (std::size_t index = 0; index < area.size(); ++index)
        {
            if (area[index] != expected[index])
                return testing::AssertionFailure() << "byte " << static_cast<int>(index) - front << " is " << int{area[index]}
                                                   << " and should be " << int{expected[index]};
        }
        return testing::AssertionSuccess();
    }

    testing::AssertionResult isUntouched() const { return holds({}); }

private:
    static constexpr int front = 400, room = 1200;
    using Area = std::array<unsigned char, front + room>;

    static void put(Area &area, const std::string &bytes) { bytes.copy(reinterpret_cast<char *>(area.data() + front), bytes.size()); }

    Area area, original;
};

// Texts with every kind of character in them, none of them zero.
inline std::string variedCharacters(std::size_t count)
{
    std::string characters;
    for (std::size_t index = 0; index < count; ++index)
        characters += static_cast<char>(index * 89 % 255 + 1);
    return characters;
}
