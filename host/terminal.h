// Colours, for a terminal that shows them and a person who wants them.
#pragma once

#include <string>

namespace host
{

class Style
{
public:
    // Colours only if standard output is a terminal that can show them and NO_COLOR is unset or empty.
    static Style forStandardOutput();

    explicit Style(bool coloured) : coloured_(coloured) {}

    std::string title(const std::string &text) const { return wrapped("1", text); }
    std::string group(const std::string &text) const { return wrapped("36", text); }
    std::string label(const std::string &text) const { return wrapped("2", text); }
    std::string folder(const std::string &text) const { return wrapped("1;34", text); }
    std::string link(const std::string &text) const { return wrapped("36", text); }
    std::string warning(const std::string &text) const { return wrapped("33", text); }

    bool isColoured() const { return coloured_; }

private:
    std::string wrapped(const char *code, const std::string &text) const;

    bool coloured_;
};

}   // namespace host
