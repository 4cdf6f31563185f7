#include "host/hexadecimal_lines.h"

#include <cstdio>

namespace host
{

std::string hexadecimalLine(UInt64 offset, std::span<const char> bytes)
{
    char text[32];
    std::snprintf(text, sizeof text, "%08llX ", static_cast<unsigned long long>(offset));
    std::string line = text;
    std::string characters;
    for (std::size_t index = 0; index < bytesOfHexadecimalLine; ++index)
    {
        line += index % 8 == 0 && index > 0 ? "  " : " ";
        if (index >= bytes.size())
        {
            line += "  ";
            continue;
        }
        auto byte = static_cast<unsigned char>(bytes[index]);
        std::snprintf(text, sizeof text, "%02X", unsigned{byte});
        line += text;
        characters += byte >= 0x20 && byte < 0x7F ? bytes[index] : '.';
    }
    return line + "  |" + characters + "|\n";
}

}   // namespace host
