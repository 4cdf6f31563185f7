#include "host/resource_text.h"

#include "host/text.h"

#include <cstdio>

namespace host
{

namespace
{

// Takes a number or a string from the front; nothing, for good, once the bytes are at their end.
class Reader
{
public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {}

    UInt32 number(std::size_t width)
    {
        UInt32 value = 0;
        for (const char byte : take(width))
            value = value << 8 | static_cast<unsigned char>(byte);
        return value;
    }

    std::string_view pascal() { return take(number(1)); }
    bool isGood() const { return isGood_; }

private:
    std::string_view take(std::size_t count)
    {
        isGood_ = isGood_ && count <= bytes_.size();
        if (!isGood_)
            return {};
        const std::string_view taken = bytes_.substr(0, count);
        bytes_.remove_prefix(count);
        return taken;
    }

    std::string_view bytes_;
    bool isGood_ = true;
};

std::string lineOf(std::string_view macRoman)
{
    return printable(utf8FromMacRoman(macRoman)) + '\n';
}

std::string stringList(Reader &reader)
{
    std::string lines;
    const UInt32 count = reader.number(2);
    for (UInt32 index = 0; index < count && reader.isGood(); ++index)
        lines += lineOf(reader.pascal());
    return lines;
}

// The platform ends lines with a carriage return.
std::string textLines(std::string_view text)
{
    std::string lines;
    while (!text.empty())
    {
        const std::size_t end = std::min(text.find('\r'), text.size());
        lines += lineOf(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

const char *nameOfStage(UInt32 stage)
{
    switch (stage)
    {
    case 0x20: return "development";
    case 0x40: return "alpha";
    case 0x60: return "beta";
    case 0x80: return "final";
    default: return "unknown stage";
    }
}

// Numbers are in decimal digits of four bits each: 0x05 0x95 is 5.9.5.
std::string version(Reader &reader)
{
    char numbers[96];
    const UInt32 major = reader.number(1), minor = reader.number(1), stage = reader.number(1), build = reader.number(1);
    std::snprintf(numbers, sizeof numbers, "%X.%X.%X %s %u, region %u\n", major, minor >> 4, minor & 15, nameOfStage(stage), build,
                  reader.number(2));
    std::string lines = numbers;
    lines += lineOf(reader.pascal());
    return lines + lineOf(reader.pascal());
}

}   // namespace

std::optional<std::string> textOfResource(ResType type, std::string_view bytes)
{
    Reader reader(bytes);
    std::string lines;
    switch (type)
    {
    case fourCharCode("STR "): lines = lineOf(reader.pascal()); break;
    case fourCharCode("STR#"): lines = stringList(reader); break;
    case fourCharCode("vers"): lines = version(reader); break;
    case fourCharCode("TEXT"): lines = textLines(bytes); break;
    default: return std::nullopt;
    }
    return reader.isGood() ? std::optional(lines) : std::nullopt;
}

}   // namespace host
