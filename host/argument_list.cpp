#include "host/argument_list.h"

#include <algorithm>
#include <sstream>

namespace host
{

// Placeholders are in capitals, and the words of a choice are not.
std::vector<std::string> choicesOf(const Argument &argument)
{
    const std::string &value = argument.value;
    auto isPlaceholder = [](char character) { return character >= 'A' && character <= 'Z'; };
    if (!argument.isOption() || value.find('|') == std::string::npos || std::any_of(value.begin(), value.end(), isPlaceholder))
        return {};
    std::vector<std::string> words;
    std::istringstream stream(value);
    for (std::string word; std::getline(stream, word, '|');)
        words.push_back(word);
    return words;
}

bool takesPath(const Argument &argument)
{
    static const char *const placeholders[] = {"COMMAND", "DESCRIPTION", "DEST", "FILE", "FOLDER", "FROM", "OTHER", "PATH", "SOURCE", "TO"};
    auto isValue = [&](const char *word) { return argument.value == word; };
    return std::any_of(std::begin(placeholders), std::end(placeholders), isValue);
}

}   // namespace host
