#include "host/terminal.h"

#include <cstdlib>
#include <unistd.h>

namespace host
{

namespace
{

bool isSet(const char *variable)
{
    const char *value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

bool terminalShowsColours()
{
    const char *terminal = std::getenv("TERM");
    return terminal != nullptr && *terminal != '\0' && std::string(terminal) != "dumb";
}

}   // namespace

Style Style::forStandardOutput()
{
    return Style(isatty(STDOUT_FILENO) != 0 && !isSet("NO_COLOR") && terminalShowsColours());
}

std::string Style::wrapped(const char *code, const std::string &text) const
{
    return coloured_ && !text.empty() ? "\033[" + std::string(code) + "m" + text + "\033[0m" : text;
}

}   // namespace host
