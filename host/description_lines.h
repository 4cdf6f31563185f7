// The lines of a resource description, taken apart.
//
//     'MENU' 128 "Sizes"            // a comment
//         item "Small" key "S"
//         |..##..|
//
// A line is words, numbers among them, "texts" with \" \\ \n \t \xNN in them, 'four' characters, and rows of a picture between two bars.
#pragma once

#include "platform/types.h"

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host
{

// What is wrong, with the number of the line where it is.
struct DescriptionError : std::runtime_error
{
    DescriptionError(std::size_t lineNumber, const std::string &message) : std::runtime_error(message), line(lineNumber) {}
    std::size_t line;
};

struct DescriptionToken
{
    enum class Kind
    {
        word,
        text,   // in Mac Roman
        code,
        row,
    };

    Kind kind = Kind::word;
    std::string text;   // of a code, its four characters in Mac Roman; of a row, ASCII
};

// One line that says something. Its words are taken from left to right; what is not as wanted throws DescriptionError.
class DescriptionLine
{
public:
    DescriptionLine(std::size_t number, std::string_view line);

    std::size_t number() const { return number_; }
    bool isEmpty() const { return tokens_.empty(); }
    bool isIndented() const { return isIndented_; }
    bool isAtEnd() const { return next_ == tokens_.size(); }
    bool startsWith(DescriptionToken::Kind kind) const;   // what comes next

    std::string takeWord(const char *what);                               // `what` is wanted, for the message: "an ID"
    bool takeIf(std::string_view word);                                   // if that very word comes next
    SInt64 takeNumber(const char *what, SInt64 lowest, SInt64 highest);   // decimal, or hexadecimal after 0x
    SInt16 takeShort(const char *what);
    std::string takeText(const char *what, std::size_t longest = 255);   // in Mac Roman
    ResType takeType();
    std::string takeRow();
    void expectEnd() const;

    [[noreturn]] void fail(const std::string &message) const { throw DescriptionError(number_, message); }

private:
    const DescriptionToken &take(DescriptionToken::Kind kind, const char *what);
    std::string_view takeQuoted(std::string_view rest, DescriptionToken &token) const;
    std::string inMacRoman(const std::string &plain) const;
    void append(std::string_view rest);

    std::size_t number_;
    bool isIndented_;
    std::vector<DescriptionToken> tokens_;
    std::size_t next_ = 0;
};

// The lines that are not empty.
std::vector<DescriptionLine> descriptionLines(std::string_view description);

}   // namespace host
