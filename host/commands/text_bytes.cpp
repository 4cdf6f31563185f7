#include "host/commands/text_bytes.h"

#include "host/usage_error.h"

#include <charconv>
#include <cstdint>
#include <cstdio>

namespace host
{

namespace
{

constexpr std::size_t largestBuffer = 256;   // the length byte and 255 characters

std::uint8_t byteOf(char character)
{
    return static_cast<std::uint8_t>(character);
}

bool isPlainAscii(char character)
{
    return byteOf(character) >= 0x20 && byteOf(character) < 0x7F && character != '"' && character != '\\';
}

bool isSpace(char character)
{
    return character == ' ' || character == '\t' || character == '\n';
}

template <typename... Values>
std::string formatted(const char *format, Values... values)
{
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, format, values...);
    return buffer;
}

// Takes up to `mostDigits` digits from the front of `rest`. Throws if there is none or the number is no byte.
char takeByte(std::string_view &rest, std::size_t mostDigits, int base)
{
    unsigned value = 0;
    std::string_view digits = rest.substr(0, mostDigits);
    std::from_chars_result end = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    if (end.ptr == digits.data() || value > 0xFF)
        throw UsageError(base == 8 ? "an octal escape is not \\0 to \\377" : "\\x without hexadecimal digits behind it");
    rest.remove_prefix(static_cast<std::size_t>(end.ptr - digits.data()));
    return static_cast<char>(value);
}

// Takes what follows a backslash.
char takeEscape(std::string_view &rest)
{
    if (rest.empty())
        throw UsageError("the literal ends with a backslash");
    char kind = rest[0];
    if (kind >= '0' && kind <= '7')
        return takeByte(rest, 3, 8);
    rest.remove_prefix(1);
    switch (kind)
    {
    case 'x': return takeByte(rest, 2, 16);
    case 'n': return '\n';
    case 'r': return '\r';
    case 't': return '\t';
    case '"':
    case '\'':
    case '\\':
    case '?': return kind;
    default: throw UsageError("there is an escape that is not read here; octal and \\x ones are");
    }
}

std::string bytesFromLiteral(std::string_view literal)
{
    std::string bytes;
    std::string_view rest = literal.substr(1);
    while (!rest.empty() && rest[0] != '"')
    {
        char first = rest[0];
        if (byteOf(first) >= 0x80)
            throw UsageError("characters outside ASCII have to be escapes, such as \\311");
        rest.remove_prefix(1);
        bytes += first == '\\' ? takeEscape(rest) : first;
    }
    if (rest != "\"")
        throw UsageError(rest.empty() ? "the quote at the end is missing" : "there is something behind the closing quote");
    return bytes;
}

std::string bytesFromHex(std::string_view digits)
{
    std::string bytes;
    for (std::size_t position = 0; position < digits.size();)
    {
        if (isSpace(digits[position]))
        {
            ++position;
            continue;
        }
        unsigned value = 0;
        const char *pair = digits.data() + position;
        std::size_t length = digits.size() - position < 2 ? 1 : 2;
        if (std::from_chars(pair, pair + length, value, 16).ptr != pair + 2)
            throw UsageError("is neither pairs of hexadecimal digits nor a C string in quotes");
        bytes += static_cast<char>(value);
        position += 2;
    }
    return bytes;
}

}   // namespace

std::string hexDump(std::string_view bytes)
{
    std::string dump;
    for (char character : bytes)
        dump += formatted(dump.empty() ? "%02X" : " %02X", unsigned{byteOf(character)});
    return dump;
}

std::string cLiteral(std::string_view bytes)
{
    std::string literal = "\"";
    for (char character : bytes)
    {
        if (isPlainAscii(character))
            literal += character;
        else
            literal += formatted("\\%03o", unsigned{byteOf(character)});
    }
    return literal + "\"";
}

std::string pascalFromDump(std::string_view dump)
{
    std::string bytes = dump.starts_with('"') ? bytesFromLiteral(dump) : bytesFromHex(dump);
    if (bytes.empty())
        throw UsageError("has no bytes; even an empty string has its length byte, 00");
    if (bytes.size() > largestBuffer)
        throw UsageError("has " + std::to_string(bytes.size()) + " bytes; a length byte and 255 characters are the most");
    std::size_t length = byteOf(bytes[0]);
    if (bytes.size() - 1 < length)
        throw UsageError("is cut off: its length byte says " + std::to_string(length) + " but " + std::to_string(bytes.size() - 1) +
                         " characters follow (a dump with spaces has to be one argument, in quotes)");
    return bytes.substr(0, 1 + length);
}

}   // namespace host
