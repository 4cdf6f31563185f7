#include "host/commands/listing_table.h"

#include "host/dates.h"
#include "host/text.h"

#include <algorithm>

namespace host
{

namespace
{

struct FlagLetter
{
    UInt16 flag;
    char letter;
};

constexpr FlagLetter flagLetters[] = {
    {0x8000, 'a'}, {0x2000, 'b'}, {kHasCustomIcon, 'c'}, {kIsInvisible, 'i'}, {kNameLocked, 'n'}, {kIsStationery, 's'},
};

std::string flagsText(const FSCatalogInfo &catalog)
{
    std::string text;
    UInt16 flags = finderFlagsOf(catalog);
    for (const FlagLetter &row : flagLetters)
        text += flags & row.flag ? row.letter : '-';
    return text + (isLocked(catalog) ? 'L' : '-');
}

std::string whatItIs(const FSCatalogInfo &catalog)
{
    Kind kind = kindOf(catalog);
    if (kind == Kind::folder)
        return "folder";
    if (kind == Kind::symbolicLink)
        return "link";
    FinderInfo finder = finderInfoOf(catalog);
    return shownCode(finder.file.fileType) + " " + shownCode(finder.file.fileCreator);
}

// 2001-02-03 05:05
std::string dayAndMinute(const UTCDateTime &date)
{
    std::string text = isoLocal(date);
    std::size_t middle = text.find('T');
    return middle == std::string::npos ? text : text.substr(0, middle) + " " + text.substr(middle + 1, 5);
}

constexpr std::size_t dataColumn = 2;
constexpr std::size_t resourceColumn = 3;

std::string aligned(const std::string &cell, std::size_t width, bool toTheRight)
{
    std::string space(width - columnsOf(cell), ' ');
    return toTheRight ? space + cell : cell + space;
}

}   // namespace

void ListingTable::add(const ShownObject &object)
{
    const FSCatalogInfo &catalog = object.catalog;
    bool hasForks = !isFolder(catalog);
    Line line;
    line.cells = {whatItIs(catalog), flagsText(catalog), hasForks ? grouped(catalog.dataLogicalSize) : "-",
                  hasForks ? grouped(catalog.rsrcLogicalSize) : "-", dayAndMinute(catalog.contentModDate)};
    line.name = shownName(object, style_);
    for (std::size_t column = 0; column < line.cells.size(); ++column)
        widths_[column] = std::max(widths_[column], columnsOf(line.cells[column]));
    lines_.push_back(std::move(line));
}

std::string ListingTable::text() const
{
    std::string text;
    for (const Line &line : lines_)
    {
        for (std::size_t column = 0; column < line.cells.size(); ++column)
            text += aligned(line.cells[column], widths_[column], column == dataColumn || column == resourceColumn) + "  ";
        text += line.name + "\n";
    }
    return text;
}

}   // namespace host
