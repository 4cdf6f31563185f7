// Patterns for names, as shells have them: * any characters, ? one, [a-z] one of some, [!a-z] one of others, \ before any of these to
// mean itself.
#pragma once

#include <string>

namespace host
{

class NamePattern
{
public:
    explicit NamePattern(std::string pattern, bool ignoringCase = false);

    // Whether the pattern is that of the whole name. Characters are those of UTF-8, in both; where one of them is none, they are bytes.
    bool matches(const std::string &name) const;

private:
    std::string pattern_;
    int options_;
};

}   // namespace host
