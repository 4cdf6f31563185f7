#include "standin/text/loose_mappings.h"

#include "standin/text/text_part.h"

#include <algorithm>

namespace standin
{

namespace
{

struct LooseForm
{
    char32_t character;
    std::u16string_view form;
};

// Sorted by character. The first ones of each pair of twins are those that an encoding is more likely to lack.
constexpr LooseForm looseForms[] = {
    {0x00AD, u"-"},                                                  // soft hyphen
    {0x02B9, u"'"},                                                  // prime as a letter
    {0x02BC, u"\u2019"},                                             // apostrophe as a letter
    {0x0394, u"\u2206"},                                             // delta and increment
    {0x03A0, u"\u220F"},                                             // pi and product
    {0x03A3, u"\u2211"},                                             // sigma and sum
    {0x03BC, u"\u00B5"},                                             // mu and micro
    {0x2010, u"-"},      {0x2011, u"-"},      {0x2012, u"\u2013"},   // figure dash
    {0x2013, u"-"},      {0x2014, u"-"},      {0x2015, u"\u2014"},   // horizontal bar
    {0x2018, u"'"},      {0x2019, u"'"},      {0x201A, u"'"},      {0x201B, u"\u2018"}, {0x201C, u"\""}, {0x201D, u"\""},
    {0x201E, u"\""},     {0x201F, u"\u201C"}, {0x2032, u"'"},      {0x2033, u"\""},     {0x2043, u"-"},  {0x2044, u"/"},
    {0x2206, u"\u0394"}, {0x220F, u"\u03A0"}, {0x2211, u"\u03A3"}, {0x2212, u"-"},      {0x2215, u"/"},  {0x2219, u"\u00B7"},
    {0x22C5, u"\u00B7"}, {0x22EF, u"\u2026"}, {0x301C, u"~"},
};

std::u16string listedForm(char32_t character)
{
    const auto *end = std::end(looseForms);
    const auto *found = std::lower_bound(std::begin(looseForms), end, character,
                                         [](const LooseForm &row, char32_t wanted) { return row.character < wanted; });
    return found != end && found->character == character ? std::u16string(found->form) : std::u16string();
}

bool isHarmless(char16_t unit)
{
    return unit >= u' ' && unit != u':' && unit != 0x7F;
}

}   // namespace

std::u16string looseFormOf(char32_t character)
{
    std::u16string form = listedForm(character);
    if (form.empty() && textPart())
        form = textPart()->otherForm(character);
    return std::all_of(form.begin(), form.end(), isHarmless) ? form : std::u16string();
}

}   // namespace standin
