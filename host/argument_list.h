// What a command takes from its command line, as a list: for manual pages and for the completion that shells offer.
#pragma once

#include <string>
#include <vector>

namespace host
{

// What help says of a command, or of a part of one.
struct Explanation
{
    const char *summary;       // one line
    const char *description;   // what there is to say beyond that
    const char *examples;      // lines
};

// An option, or a word that is none.
struct Argument
{
    std::vector<std::string> names;   // of an option: "-l", "--long"
    std::string value;                // what stands behind the option, or for the word; empty for a flag
    std::string description;
    bool isRequired = false;
    bool isList = false;

    bool isOption() const { return !names.empty(); }
};

struct ArgumentList
{
    std::string name;   // as a person types it: "zerb text encode"
    Explanation explanation;
    std::vector<Argument> arguments;   // in the order of the help
    std::vector<ArgumentList> parts;
};

// The words between which an option's value is to be chosen; none where it is anything else.
std::vector<std::string> choicesOf(const Argument &argument);

// Whether a value may be the path of a file or folder, so that a shell should offer those.
bool takesPath(const Argument &argument);

}   // namespace host
