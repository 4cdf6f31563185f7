#include "host/object_info.h"

#include "host/dates.h"
#include "host/finder_flags.h"
#include "host/four_character_codes.h"
#include "host/numbers.h"
#include "host/report.h"
#include "host/text.h"
#include "host/text_encodings.h"

#include <cstdio>

namespace host
{

namespace
{

constexpr std::size_t labelWidth = 16;

std::string padded(const std::string &text, std::size_t width)
{
    std::size_t columns = columnsOf(text);
    return columns < width ? text + std::string(width - columns, ' ') : text;
}

std::string rightAligned(const std::string &text, std::size_t width)
{
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

// Lines of labels and values under headings. Values must be printable already.
class Sheet
{
public:
    explicit Sheet(const Style &style) : style_(style) {}

    void title(const std::string &name, const std::string &kind) { text_ += style_.title(name) + "  " + style_.label(kind) + "\n"; }
    void group(const char *heading) { text_ += "  " + style_.group(heading) + "\n"; }

    void line(const char *label, const std::string &value) { text_ += "    " + style_.label(padded(label, labelWidth)) + value + "\n"; }

    const std::string &text() const { return text_; }

private:
    const Style &style_;
    std::string text_;
};

std::string joined(const std::vector<std::string> &names, const char *ifNone)
{
    std::string text;
    for (const std::string &name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text.empty() ? ifNone : text;
}

// 0x4000  isInvisible
std::string describeBits(std::span<const NamedBit> table, UInt32 bits, int digits)
{
    return hexadecimal(bits, digits) + "  " + joined(namesOfBits(table, bits), bits == 0 ? "none" : "no published name");
}

std::string describeDate(const UTCDateTime &date)
{
    std::string text = isoLocal(date);
    return date.fraction != 0 ? text + "  (" + std::to_string(date.fraction) + "/65536 s)" : text;
}

std::string describePoint(Point point)
{
    return "h " + std::to_string(point.h) + ", v " + std::to_string(point.v);
}

std::string describeRect(const Rect &rect)
{
    return "left " + std::to_string(rect.left) + ", top " + std::to_string(rect.top) + ", right " + std::to_string(rect.right) +
           ", bottom " + std::to_string(rect.bottom);
}

std::string describeNumberAndName(SInt64 number, const std::string &name)
{
    return std::to_string(number) + (name.empty() ? "" : "  " + printable(name));
}

void addPlace(Sheet &sheet, const ObjectInfo &info)
{
    sheet.group("Place");
    sheet.line("path", printable(info.path));
    if (info.shortName != info.name)
        sheet.line("short name", printable(info.shortName));
    sheet.line("volume", describeNumberAndName(info.catalog.volume, info.volumeName));
    sheet.line("node ID", std::to_string(info.catalog.nodeID));
    sheet.line("parent ID", std::to_string(info.catalog.parentDirID));
}

void addTypeAndCreator(Sheet &sheet, const FileInfo &file)
{
    sheet.line("type", printable(describeCode(file.fileType)));
    sheet.line("creator", printable(describeCode(file.fileCreator)));
}

void addFinderInformation(Sheet &sheet, const ObjectInfo &info)
{
    sheet.group("Finder");
    if (info.isFolder())
        sheet.line("window", describeRect(info.finder.folder.windowBounds));
    else
        addTypeAndCreator(sheet, info.finder.file);
    sheet.line("flags", describeBits(finderFlags(), info.finderFlags() & ~UInt32(labelMask), 4));
    sheet.line("label", nameOfLabel(labelOfFlags(info.finderFlags())));
    sheet.line("extended flags", describeBits(extendedFinderFlags(), info.extendedFlags(), 4));
    sheet.line("location", describePoint(info.location()));
    if (info.isFolder())
        sheet.line("scrolled to", describePoint(info.extendedFinder.folder.scrollPosition));
    if (info.putAwayFolder() != 0)
        sheet.line("put away in", "folder " + std::to_string(info.putAwayFolder()));
}

void addLock(Sheet &sheet, const ObjectInfo &info, const Style &style)
{
    sheet.group("Lock");
    bool locked = info.catalog.nodeFlags & kFSNodeLockedMask;
    sheet.line("locked", locked ? style.warning("yes") : "no");
    if (info.lockCheck == noErr)
        sheet.line("may change", "yes");
    else
        sheet.line("may change", style.warning("no") + ", " + describeResult(info.lockCheck) + ": " + meaningOfResult(info.lockCheck));
}

std::string describeFork(UInt64 logical, UInt64 physical)
{
    return rightAligned(grouped(logical), 15) + " bytes" + rightAligned(grouped(physical), 15) + " on disk";
}

void addForks(Sheet &sheet, const ObjectInfo &info)
{
    sheet.group("Forks");
    sheet.line("data", describeFork(info.catalog.dataLogicalSize, info.catalog.dataPhysicalSize));
    sheet.line("resource", describeFork(info.catalog.rsrcLogicalSize, info.catalog.rsrcPhysicalSize));
    const char *ifNone = info.catalog.nodeFlags & kFSNodeForkOpenMask ? "yes" : "none";
    sheet.line("open", joined(namesOfBits(openForkFlags(), info.catalog.nodeFlags), ifNone));
}

void addContents(Sheet &sheet, const ObjectInfo &info)
{
    sheet.group("Contents");
    sheet.line("items", grouped(info.catalog.valence));
}

void addDates(Sheet &sheet, const FSCatalogInfo &catalog)
{
    sheet.group("Dates");
    sheet.line("created", describeDate(catalog.createDate));
    sheet.line("modified", describeDate(catalog.contentModDate));
    sheet.line("attributes", describeDate(catalog.attributeModDate));
    sheet.line("accessed", describeDate(catalog.accessDate));
    sheet.line("backed up", describeDate(catalog.backupDate));
}

void addAccess(Sheet &sheet, const ObjectInfo &info)
{
    char octal[16];
    std::snprintf(octal, sizeof octal, "%06o", static_cast<unsigned>(info.permissions.mode));
    sheet.group("Access");
    sheet.line("owner ID", std::to_string(info.permissions.userID));
    sheet.line("group ID", std::to_string(info.permissions.groupID));
    sheet.line("mode", describeMode(info.permissions.mode) + "  " + octal);
    sheet.line("user", describeBits(userPrivilegeLimits(), info.catalog.userPrivileges, 2));
}

void addText(Sheet &sheet, TextEncoding hint)
{
    sheet.group("Text");
    sheet.line("encoding hint", describeNumberAndName(hint, nameOfEncoding(hint)));
}

}   // namespace

std::string infoText(const ObjectInfo &info, const Style &style)
{
    Sheet sheet(style);
    sheet.title(printable(info.name), nameOfKind(info.kind));
    addPlace(sheet, info);
    addFinderInformation(sheet, info);
    addLock(sheet, info, style);
    if (info.isFolder())
        addContents(sheet, info);
    else
        addForks(sheet, info);
    addDates(sheet, info.catalog);
    addAccess(sheet, info);
    addText(sheet, info.catalog.textEncodingHint);
    return sheet.text();
}

}   // namespace host
