#include "host/icon_words.h"

#include "host/finder_flags.h"
#include "host/numbers.h"
#include "host/usage_error.h"

#include <sstream>
#include <utility>

namespace host
{

namespace
{

constexpr IconTransformType labelBits = kTransformLabel7;

constexpr struct
{
    const char *word;
    IconTransformType transform;
} states[] = {{"disabled", kTransformDisabled}, {"offline", kTransformOffline}, {"open", kTransformOpen}};

constexpr struct
{
    const char *word;
    IconAlignmentType alignment;
} alignments[] = {
    {"none", kAlignNone},
    {"center", kAlignAbsoluteCenter},
    {"top", kAlignCenterTop},
    {"bottom", kAlignCenterBottom},
    {"left", kAlignCenterLeft},
    {"right", kAlignCenterRight},
    {"top-left", kAlignTopLeft},
    {"top-right", kAlignTopRight},
    {"bottom-left", kAlignBottomLeft},
    {"bottom-right", kAlignBottomRight},
};

constexpr struct
{
    const char *word;
    UInt32 color;
} grays[] = {{"white", 0xFFFFFF}, {"light-gray", 0xC0C0C0}, {"gray", 0x808080}, {"dark-gray", 0x404040}, {"black", 0x000000}};

IconTransformType stateOf(const std::string &word)
{
    for (const auto &[known, transform] : states)
        if (word == known)
            return transform;
    return kTransformNone;
}

bool isLabelColor(const std::string &word)
{
    for (int label = 1; label <= 7; ++label)
        if (word == nameOfLabel(label))
            return true;
    return false;
}

IconTransformType transformOf(const std::string &word)
{
    if (word == "selected")
        return kTransformSelected;
    if (isLabelColor(word))
        return static_cast<IconTransformType>(labelFromText(word) << 8);
    if (const IconTransformType state = stateOf(word))
        return state;
    throw UsageError(
        "there is no look \"" + word +
        "\"; the looks are none, disabled, offline, open, selected, and the labels gray, green, purple, blue, yellow, red, orange");
}

// A part of a transform in which two would make a third one that nobody asked for.
bool isGivenTwice(IconTransformType earlier, IconTransformType next)
{
    constexpr IconTransformType stateBits = 0xFF;
    return ((earlier & stateBits) && (next & stateBits)) || ((earlier & labelBits) && (next & labelBits));
}

RGBColor colorOf(UInt32 color)
{
    const auto component = [=](int shift) { return static_cast<UInt16>((color >> shift & 0xFF) * 0x101); };
    return {component(16), component(8), component(0)};
}

}   // namespace

IconTransformType transformFromText(const std::string &typed)
{
    if (typed == "none")
        return kTransformNone;
    IconTransformType transform = kTransformNone;
    std::istringstream words(typed + ",");
    for (std::string word; std::getline(words, word, ',');)
    {
        const IconTransformType next = transformOf(word);
        if (isGivenTwice(transform, next))
            throw UsageError("an icon has one of disabled, offline and open, and one label");
        transform = static_cast<IconTransformType>(transform | next);
    }
    return transform;
}

IconAlignmentType alignmentFromText(const std::string &typed)
{
    std::string known;
    for (const auto &[word, alignment] : alignments)
    {
        if (typed == word)
            return alignment;
        known += (known.empty() ? "" : ", ") + std::string(word);
    }
    throw UsageError("there is no alignment \"" + typed + "\"; there are " + known);
}

RGBColor colorFromText(const std::string &typed)
{
    for (const auto &[word, color] : grays)
        if (typed == word)
            return colorOf(color);
    const std::string digits = typed.substr(typed.starts_with('#') ? 1 : 0);
    if (digits.size() != 6 || digits.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos)
        throw UsageError("a color is six hexadecimal digits, or white, light-gray, gray, dark-gray or black, not: " + typed);
    return colorOf(hexadecimalFromText("0x" + digits, 6));
}

}   // namespace host
