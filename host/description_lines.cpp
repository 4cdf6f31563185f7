#include "host/description_lines.h"

#include "host/text.h"

#include <charconv>
#include <optional>
#include <utility>

namespace host
{

namespace
{

constexpr std::string_view blanks = " \t\r";

bool isHexadecimal(char character)
{
    return std::string_view("0123456789abcdefABCDEF").find(character) != std::string_view::npos;
}

// What stands behind a backslash as xNN.
std::optional<char> escapedByte(std::string_view rest)
{
    if (rest.size() < 3 || rest[0] != 'x' || !isHexadecimal(rest[1]) || !isHexadecimal(rest[2]))
        return std::nullopt;
    return static_cast<char>(static_cast<unsigned char>(std::stoi(std::string(rest.substr(1, 2)), nullptr, 16)));
}

// What any other character there stands for.
std::optional<char> escapedCharacter(std::string_view rest)
{
    switch (rest.empty() ? '\0' : rest[0])
    {
    case 'n': return '\r';   // the platform's end of a line
    case 't': return '\t';
    case '\\':
    case '"':
    case '\'': return rest[0];
    default: return std::nullopt;
    }
}

bool readNumber(std::string_view word, SInt64 &number)
{
    const bool isNegative = word.starts_with('-');
    word.remove_prefix(isNegative ? 1 : 0);
    const bool isHexadecimalNumber = word.starts_with("0x") || word.starts_with("0X");
    word.remove_prefix(isHexadecimalNumber ? 2 : 0);
    SInt64 value = 0;
    const char *end = word.data() + word.size();
    if (word.empty() || word[0] == '-')
        return false;
    const auto [stopped, failure] = std::from_chars(word.data(), end, value, isHexadecimalNumber ? 16 : 10);
    if (failure != std::errc{} || stopped != end)
        return false;
    number = isNegative ? -value : value;
    return true;
}

}   // namespace

DescriptionLine::DescriptionLine(std::size_t number, std::string_view line)
    : number_(number), isIndented_(!line.empty() && (line[0] == ' ' || line[0] == '\t'))
{
    append(line);
}

void DescriptionLine::append(std::string_view rest)
{
    for (;;)
    {
        rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
        if (rest.empty() || rest.starts_with("//"))
            return;
        DescriptionToken token;
        if (rest[0] == '"' || rest[0] == '\'')
            rest = takeQuoted(rest, token);
        else if (rest[0] == '|')
        {
            const std::size_t end = rest.find('|', 1);
            if (end == std::string_view::npos)
                fail("a row of a picture needs a bar at its end too");
            token = {DescriptionToken::Kind::row, std::string(rest.substr(1, end - 1))};
            rest.remove_prefix(end + 1);
        }
        else
        {
            const std::size_t length = std::min(rest.find_first_of(" \t\r\"'|"), rest.size());
            token = {DescriptionToken::Kind::word, std::string(rest.substr(0, length))};
            rest.remove_prefix(length);
        }
        tokens_.push_back(std::move(token));
    }
}

std::string DescriptionLine::inMacRoman(const std::string &plain) const
{
    const auto converted = macRomanFromUtf8(plain);
    if (!converted)
        fail("\"" + plain + "\" has a character that Mac Roman does not have");
    return *converted;
}

// Bytes after \x are Mac Roman as they are; everything else is UTF-8 and converted piece by piece, so that both can stand in one text.
std::string_view DescriptionLine::takeQuoted(std::string_view rest, DescriptionToken &token) const
{
    const char quote = rest[0];
    std::string plain;   // what is still to be converted
    token.kind = quote == '"' ? DescriptionToken::Kind::text : DescriptionToken::Kind::code;
    for (rest.remove_prefix(1); !rest.empty() && rest[0] != quote; rest.remove_prefix(1))
    {
        if (rest[0] != '\\')
        {
            plain += rest[0];
            continue;
        }
        rest.remove_prefix(1);
        if (const auto byte = escapedByte(rest))
        {
            token.text += inMacRoman(std::exchange(plain, {})) + *byte;
            rest.remove_prefix(2);
        }
        else if (const auto character = escapedCharacter(rest))
            plain += *character;
        else
            fail("after a backslash stands one of \\ \" ' n t xNN");
    }
    if (rest.empty())
        fail(std::string("there is no ") + quote + " at the end of the text");
    token.text += inMacRoman(plain);
    return rest.substr(1);
}

bool DescriptionLine::startsWith(DescriptionToken::Kind kind) const
{
    return !isAtEnd() && tokens_[next_].kind == kind;
}

const DescriptionToken &DescriptionLine::take(DescriptionToken::Kind kind, const char *what)
{
    if (!startsWith(kind))
        fail(std::string(what) + " is wanted here" + (isAtEnd() ? ", but the line ends" : ", not: " + tokens_[next_].text));
    return tokens_[next_++];
}

std::string DescriptionLine::takeWord(const char *what)
{
    return take(DescriptionToken::Kind::word, what).text;
}

bool DescriptionLine::takeIf(std::string_view word)
{
    const bool isNext = startsWith(DescriptionToken::Kind::word) && tokens_[next_].text == word;
    next_ += isNext ? 1 : 0;
    return isNext;
}

SInt64 DescriptionLine::takeNumber(const char *what, SInt64 lowest, SInt64 highest)
{
    const std::string word = takeWord(what);
    SInt64 number = 0;
    if (!readNumber(word, number))
        fail(std::string(what) + " is wanted here, not: " + word);
    if (number < lowest || number > highest)
        fail(word + " is no number from " + std::to_string(lowest) + " to " + std::to_string(highest));
    return number;
}

SInt16 DescriptionLine::takeShort(const char *what)
{
    return static_cast<SInt16>(takeNumber(what, -32768, 32767));
}

std::string DescriptionLine::takeText(const char *what, std::size_t longest)
{
    const std::string &text = take(DescriptionToken::Kind::text, what).text;
    if (text.size() > longest)
        fail("the text is " + std::to_string(text.size()) + " characters long, and can have " + std::to_string(longest));
    return text;
}

ResType DescriptionLine::takeType()
{
    const std::string &text = take(DescriptionToken::Kind::code, "a type such as 'STR '").text;
    if (text.size() != 4)
        fail("a type has four characters, spaces included: '" + utf8FromMacRoman(text) + "'");
    ResType type = 0;
    for (const char character : text)
        type = type << 8 | static_cast<unsigned char>(character);
    return type;
}

std::string DescriptionLine::takeRow()
{
    return take(DescriptionToken::Kind::row, "a row such as |..##..|").text;
}

void DescriptionLine::expectEnd() const
{
    if (!isAtEnd())
        fail("nothing more is wanted in this line: " + tokens_[next_].text);
}

std::vector<DescriptionLine> descriptionLines(std::string_view description)
{
    std::vector<DescriptionLine> lines;
    for (std::size_t number = 1; !description.empty(); ++number)
    {
        const std::size_t end = std::min(description.find('\n'), description.size());
        DescriptionLine line(number, description.substr(0, end));
        if (!line.isEmpty())
            lines.push_back(std::move(line));
        description.remove_prefix(std::min(end + 1, description.size()));
    }
    return lines;
}

}   // namespace host
