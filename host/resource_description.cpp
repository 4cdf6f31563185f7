#include "host/resource_description.h"

#include "host/described_icons.h"
#include "host/described_interface.h"

#include <algorithm>
#include <map>
#include <utility>

namespace host
{

namespace
{

using Lines = std::span<DescriptionLine>;

constexpr struct
{
    const char *word;
    UInt8 attribute;
} attributeWords[] = {{"preload", 0x04}, {"protected", 0x08}, {"locked", 0x10}, {"purgeable", 0x20}, {"sysheap", 0x40}};

constexpr ResType code(const char (&characters)[5])
{
    return fourCharCode(characters);
}

// What stands above the lines of one resource.
struct Head
{
    DescriptionLine line;
    SInt16 id;
    std::string name;
    UInt8 attributes;
    Lines lines;
};

// ---------------------------------------------------------------------------------------------------------------------
// bytes and texts

void appendHexadecimal(std::string &bytes, DescriptionLine &line)
{
    std::string digits;
    while (!line.isAtEnd())
        digits += line.takeWord("bytes in hexadecimal");
    if (digits.size() % 2 != 0 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        line.fail("bytes are pairs of hexadecimal digits");
    for (std::size_t index = 0; index < digits.size(); index += 2)
        append8(bytes, static_cast<UInt32>(std::stoul(digits.substr(index, 2), nullptr, 16)));
}

void appendStatement(std::string &bytes, DescriptionLine &line)
{
    if (line.takeIf("bytes"))
        appendHexadecimal(bytes, line);
    else if (line.takeIf("string"))
        appendPascal(bytes, line.takeText("a text"));
    else if (line.takeIf("text"))
        bytes += line.takeText("a text", 0xFFFFFF);
    else if (line.takeIf("byte"))
        append8(bytes, static_cast<UInt32>(line.takeNumber("a number", -0x80, 0xFF)));
    else if (line.takeIf("word"))
        append16(bytes, static_cast<UInt32>(line.takeNumber("a number", -0x8000, 0xFFFF)));
    else if (line.takeIf("long"))
        append32(bytes, static_cast<UInt32>(line.takeNumber("a number", -0x80000000LL, 0xFFFFFFFFLL)));
    else
        line.fail("bytes come in lines `bytes`, `string`, `text`, `byte`, `word` and `long`");
    line.expectEnd();
}

std::string plainBytes(Lines lines)
{
    std::string bytes;
    for (DescriptionLine &line : lines)
        appendStatement(bytes, line);
    return bytes;
}

bool holdsPlainBytes(Lines lines)
{
    constexpr const char *words[] = {"bytes", "string", "byte", "word", "long"};
    const auto begins = [&](const char *word) { return DescriptionLine(lines.front()).takeIf(word); };
    return !lines.empty() && std::any_of(std::begin(words), std::end(words), begins);
}

std::string stringListBytes(Lines lines)
{
    std::string bytes;
    append16(bytes, static_cast<UInt32>(lines.size()));
    for (DescriptionLine &line : lines)
    {
        appendPascal(bytes, line.takeText("a text"));
        line.expectEnd();
    }
    return bytes;
}

// ---------------------------------------------------------------------------------------------------------------------
// the compiler

class Compiler
{
public:
    std::vector<WritableResource> compile(std::string_view description);

private:
    void compileResource(DescriptionLine &head, Lines lines);
    void compileIcons(const Head &head);
    std::string bytesOf(ResType type, Head &head);
    std::string textBytes(const Head &head, bool isPascal);
    DescribedPicture onlyPicture(const Head &head, std::size_t side);
    std::string smallIcons(const Head &head);
    void add(ResType type, const Head &head, std::string bytes);

    DescribedPalette palette_ = plainPalette();
    std::vector<WritableResource> resources_;
    std::map<std::pair<ResType, SInt16>, std::size_t> lineNumbers_;
};

void Compiler::add(ResType type, const Head &head, std::string bytes)
{
    const auto [known, isNew] = lineNumbers_.try_emplace({type, head.id}, head.line.number());
    if (!isNew)
        head.line.fail("a resource of this type and ID is described in line " + std::to_string(known->second) + " already");
    resources_.push_back({type, head.id, head.name, head.attributes, std::move(bytes)});
}

// Texts in lines below each other are put together.
std::string Compiler::textBytes(const Head &head, bool isPascal)
{
    std::string text;
    for (DescriptionLine &line : head.lines)
    {
        text += line.takeText("a text", 0xFFFFFF);
        line.expectEnd();
    }
    if (!isPascal)
        return text;
    if (text.size() > 255)
        head.line.fail("the string is " + std::to_string(text.size()) + " characters long, and can have 255");
    std::string bytes;
    appendPascal(bytes, text);
    return bytes;
}

DescribedPicture Compiler::onlyPicture(const Head &head, std::size_t side)
{
    Lines lines = head.lines;
    if (lines.empty())
        head.line.fail("the resource needs a picture of " + std::to_string(side) + " rows");
    DescribedPicture picture(lines, side, palette_);
    if (!lines.empty())
        lines.front().fail("the picture has more than " + std::to_string(side) + " rows");
    return picture;
}

std::string Compiler::smallIcons(const Head &head)
{
    Lines lines = head.lines;
    std::string bytes;
    if (lines.empty())
        head.line.fail("the resource needs one picture of 16 rows at least");
    while (!lines.empty())
    {
        DescribedPicture picture(lines, 16, palette_);
        bytes += picture.oneBit();
    }
    return bytes;
}

std::string Compiler::bytesOf(ResType type, Head &head)
{
    if (holdsPlainBytes(head.lines))
        return plainBytes(head.lines);
    const std::size_t side = (type & 0xFFFFFF00) == (code("ics#") & 0xFFFFFF00) ? 16 : 32;
    switch (type)
    {
    case code("STR "): return textBytes(head, true);
    case code("TEXT"): return textBytes(head, false);
    case code("STR#"): return stringListBytes(head.lines);
    case code("MENU"): return menuBytes(head.line, head.id, head.lines);
    case code("DLOG"): return dialogBytes(head.line, head.lines);
    case code("DITL"): return dialogItemBytes(head.line, head.lines);
    case code("ALRT"): return alertBytes(head.line, head.lines);
    case code("SICN"): return smallIcons(head);
    case code("ICN#"):
    case code("ics#"):
    {
        const DescribedPicture picture = onlyPicture(head, side);
        return picture.oneBit() + picture.mask();
    }
    case code("icl4"):
    case code("ics4"): return onlyPicture(head, side).fourBits();
    case code("icl8"):
    case code("ics8"): return onlyPicture(head, side).eightBits();
    default: return plainBytes(head.lines);
    }
}

// One drawing, of 32 or of 16 rows, for all three members of that size.
void Compiler::compileIcons(const Head &head)
{
    const bool isLarge = head.lines.size() > 16;
    const DescribedPicture picture = onlyPicture(head, isLarge ? 32 : 16);
    add(isLarge ? code("ICN#") : code("ics#"), head, picture.oneBit() + picture.mask());
    add(isLarge ? code("icl4") : code("ics4"), head, picture.fourBits());
    add(isLarge ? code("icl8") : code("ics8"), head, picture.eightBits());
}

bool takeAttribute(DescriptionLine &line, UInt8 &attributes)
{
    for (const auto &[word, attribute] : attributeWords)
        if (line.takeIf(word))
        {
            attributes = static_cast<UInt8>(attributes | attribute);
            return true;
        }
    return false;
}

void Compiler::compileResource(DescriptionLine &line, Lines lines)
{
    const bool isIcons = line.takeIf("icons");
    const ResType type = isIcons ? 0 : line.takeType();
    Head head{line, line.takeShort("an ID"), {}, 0, lines};
    if (line.startsWith(DescriptionToken::Kind::text))
        head.name = line.takeText("a name");
    while (takeAttribute(line, head.attributes))
    {
    }
    line.expectEnd();
    if (isIcons)
        compileIcons(head);
    else
    {
        std::string bytes = bytesOf(type, head);
        add(type, head, std::move(bytes));
    }
}

std::vector<WritableResource> Compiler::compile(std::string_view description)
{
    std::vector<DescriptionLine> lines = descriptionLines(description);
    for (std::size_t index = 0; index < lines.size();)
    {
        DescriptionLine &line = lines[index];
        if (line.isIndented())
            line.fail("an indented line belongs to a resource above it, and there is none");
        std::size_t end = index + 1;
        while (end < lines.size() && lines[end].isIndented())
            ++end;
        if (!line.takeIf("color"))
            compileResource(line, Lines(lines).subspan(index + 1, end - index - 1));
        else
        {
            takeColor(line, palette_);
            end = index + 1;
        }
        index = end;
    }
    return std::move(resources_);
}

}   // namespace

std::vector<WritableResource> resourcesFromDescription(std::string_view description)
{
    return Compiler().compile(description);
}

}   // namespace host
