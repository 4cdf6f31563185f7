#include "host/commands/find_criteria.h"

#include "host/catalog_reading.h"
#include "host/dates.h"
#include "host/four_character_codes.h"

#include <charconv>
#include <limits>

namespace host
{

namespace
{

bool comesBefore(const UTCDateTime &one, const UTCDateTime &other)
{
    UInt64 seconds[] = {secondsSince1904(one), secondsSince1904(other)};
    return seconds[0] != seconds[1] ? seconds[0] < seconds[1] : one.fraction < other.fraction;
}

bool codesAreMet(const FindCriteria &criteria, const FSCatalogInfo &catalog)
{
    if (!criteria.type && !criteria.creator)
        return true;
    if (isFolder(catalog))
        return false;
    FinderInfo finder = finderInfoOf(catalog);
    return criteria.type.value_or(finder.file.fileType) == finder.file.fileType &&
           criteria.creator.value_or(finder.file.fileCreator) == finder.file.fileCreator;
}

bool flagsAreMet(const FindCriteria &criteria, const FSCatalogInfo &catalog)
{
    UInt16 wanted = criteria.flags.bitsToSet;
    UInt16 unwanted = criteria.flags.bitsToClear;
    if (wanted == 0 && unwanted == 0 && !criteria.label)
        return true;
    UInt16 flags = finderFlagsOf(catalog);
    return (flags & wanted) == wanted && (flags & unwanted) == 0 && criteria.label.value_or(labelOfFlags(flags)) == labelOfFlags(flags);
}

bool datesAreMet(const FindCriteria &criteria, const FSCatalogInfo &catalog)
{
    const UTCDateTime &modified = catalog.contentModDate;
    return (!criteria.newer || comesBefore(*criteria.newer, modified)) && (!criteria.older || comesBefore(modified, *criteria.older));
}

bool sizesAreMet(const FindCriteria &criteria, const FSCatalogInfo &catalog)
{
    if (!criteria.larger && !criteria.smaller)
        return true;
    UInt64 size = totalSizeOf(catalog);
    return !isFolder(catalog) && (!criteria.larger || size > *criteria.larger) && (!criteria.smaller || size < *criteria.smaller);
}

UTCDateTime dateOfNow(const std::string &text)
{
    UTCDateTime now = {};
    GetUTCDateTime(&now, kUTCDefaultOptions);
    return dateFromText(text, now);
}

void addCodeAndFlagCriteria(Arguments &arguments, FindCriteria &criteria)
{
    auto readType = [&](const std::string &text) { criteria.type = codeFromText(text); };
    auto readCreator = [&](const std::string &text) { criteria.creator = codeFromText(text); };
    arguments.text("--type", "CODE", readType, "files of this type");
    arguments.text("--creator", "CODE", readCreator, "files of this creator");
    auto readFlags = [&](const std::string &text) { readFlagChange(text, criteria.flags); };
    arguments.text("--flags", "+NAME,-NAME", readFlags, "with these Finder flags set, and those clear");
    auto setInvisible = [&] { criteria.flags.bitsToSet |= kIsInvisible; };
    auto setVisible = [&] { criteria.flags.bitsToClear |= kIsInvisible; };
    Arguments::Item invisible = arguments.flag("--invisible", setInvisible, "hidden by their flag");
    arguments.flag("--visible", setVisible, "not hidden by it").excludes(invisible);
    auto readLabel = [&](const std::string &text) { criteria.label = labelFromText(text); };
    arguments.text("--label", "LABEL", readLabel, "with this colour, none, or 0 to 7");
}

void addNameCriteria(Arguments &arguments, FindCriteria &criteria)
{
    auto readName = [&](const std::string &text) { criteria.name.emplace(text); };
    auto readNameIgnoringCase = [&](const std::string &text) { criteria.name.emplace(text, true); };
    Arguments::Item name = arguments.text("--name", "PATTERN", readName, "whose name is like this; * ? [ ] as in shells");
    arguments.text("--iname", "PATTERN", readNameIgnoringCase, "the same, whatever the case of its letters").excludes(name);
}

void addStateCriteria(Arguments &arguments, FindCriteria &criteria)
{
    arguments.choice("--kind", criteria.isFolder, {{"file", std::optional(false)}, {"folder", std::optional(true)}},
                     "only files, with links among them, or only folders");
    Arguments::Item locked = arguments.flag(
        "--locked", [&] { criteria.isLocked = true; }, "that are locked");
    arguments
        .flag(
            "--unlocked", [&] { criteria.isLocked = false; }, "that are not")
        .excludes(locked);
}

// "12", "12k", "3M", "1G": bytes, or thousands, millions and so on of them.
UInt64 sizeFromText(const std::string &text)
{
    UInt64 number = 0;
    const char *end = text.data() + text.size();
    auto [stop, error] = std::from_chars(text.data(), end, number);
    constexpr std::string_view letters = "kMGT";
    std::size_t letter = stop + 1 == end ? letters.find(*stop) : std::string_view::npos;
    bool isSize = error == std::errc() && (stop == end || letter != std::string_view::npos);
    UInt64 unit = 1;
    for (std::size_t power = 0; isSize && stop != end && power <= letter; ++power)
        unit *= 1000;
    if (!isSize || number > std::numeric_limits<UInt64>::max() / unit)
        throw UsageError("\"" + text + "\" is no size, such as 12, 12k, 3M or 1G");
    return number * unit;
}

void addDateAndSizeCriteria(Arguments &arguments, FindCriteria &criteria)
{
    auto readNewer = [&](const std::string &text) { criteria.newer = dateOfNow(text); };
    auto readOlder = [&](const std::string &text) { criteria.older = dateOfNow(text); };
    auto readLarger = [&](const std::string &text) { criteria.larger = sizeFromText(text); };
    auto readSmaller = [&](const std::string &text) { criteria.smaller = sizeFromText(text); };
    arguments.text("--newer", "DATE", readNewer, "modified after this; a DATE is as for zerb set");
    arguments.text("--older", "DATE", readOlder, "modified before this");
    arguments.text("--larger", "SIZE", readLarger, "files whose forks have more bytes together; 12, 12k, 3M, 1G");
    arguments.text("--smaller", "SIZE", readSmaller, "files with fewer");
}

}   // namespace

FSCatalogInfoBitmap FindCriteria::infoNeeded() const
{
    FSCatalogInfoBitmap info = kFSCatInfoNodeFlags;
    if (type || creator || label || flags.bitsToSet != 0 || flags.bitsToClear != 0)
        info |= kFSCatInfoFinderInfo;
    if (newer || older)
        info |= kFSCatInfoContentMod;
    if (larger || smaller)
        info |= kFSCatInfoDataSizes | kFSCatInfoRsrcSizes;
    return info;
}

bool FindCriteria::selectsFew() const
{
    return infoNeeded() != kFSCatInfoNodeFlags || isLocked == true;
}

bool FindCriteria::areMetBy(const FSCatalogInfo &catalog, const std::string *nameInPaths) const
{
    if (isFolder && *isFolder != host::isFolder(catalog))
        return false;
    if (isLocked && *isLocked != host::isLocked(catalog))
        return false;
    if (!codesAreMet(*this, catalog) || !flagsAreMet(*this, catalog) || !datesAreMet(*this, catalog) || !sizesAreMet(*this, catalog))
        return false;
    return !name || (nameInPaths != nullptr && name->matches(*nameInPaths));
}

void addCriteria(Arguments &arguments, FindCriteria &criteria)
{
    addCodeAndFlagCriteria(arguments, criteria);
    addNameCriteria(arguments, criteria);
    addStateCriteria(arguments, criteria);
    addDateAndSizeCriteria(arguments, criteria);
}

}   // namespace host
