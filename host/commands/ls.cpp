// zerb ls: lists folders.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/commands/listing_table.h"
#include "host/commands/trees.h"
#include "host/dates.h"
#include "host/text.h"

#include "platform/files.h"
#include "platform/memory.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <tuple>

namespace host
{

namespace
{

enum class Order
{
    name,
    size,
    date,
    type,
    none
};

struct Options
{
    std::vector<std::string> paths;
    Links links = Links::follow;
    Order order = Order::name;
    bool isReversed = false;
    bool isLong = false;
    bool withHidden = false;
    bool json = false;
};

// One path's objects: those inside a folder, or a file alone.
struct Listing
{
    std::vector<ShownObject> objects;
    bool isFolder = false;
    bool changedMeanwhile = false;
};

class ReferenceList
{
public:
    ReferenceList() = default;
    ReferenceList(const ReferenceList &) = delete;
    ReferenceList &operator=(const ReferenceList &) = delete;
    ~ReferenceList()
    {
        if (handle_ != nullptr)
            DisposeHandle(handle_);
    }

    OSErr fill(const Plugin &plugin, const FSRef &folder, bool &changed)
    {
        Boolean containerChanged = false;
        OSErr result = plugin.FSGetDirectoryItems(&folder, &handle_, &count_, &containerChanged);
        changed = containerChanged != 0;
        return result;
    }

    UInt32 count() const { return count_; }

    FSRef at(UInt32 index) const
    {
        FSRef ref;
        std::memcpy(&ref, *handle_ + std::size_t(index) * sizeof ref, sizeof ref);
        return ref;
    }

private:
    Handle handle_ = nullptr;
    UInt32 count_ = 0;
};

// No more than the listing needs: each field costs something for every object.
FSCatalogInfoBitmap infoNeeded(const Options &options, const Style &style)
{
    if (options.isLong || options.json || options.order == Order::size || options.order == Order::date || options.order == Order::type)
        return shownInfo;
    if (style.isColoured())
        return kindInfo;
    return options.withHidden ? kFSCatInfoNone : kFSCatInfoNodeFlags | kFSCatInfoFinderInfo;
}

OSErr lookAt(const FSRef &ref, FSCatalogInfoBitmap whichInfo, ShownObject &object)
{
    HFSUniStr255 name = {};
    object.catalog = {};
    OSErr result = FSGetCatalogInfo(&ref, whichInfo, &object.catalog, &name, nullptr, nullptr);
    object.name = pathComponentFromName(name);
    return result;
}

// An object that is gone by now was never listed.
OSErr listFolder(Invocation &invocation, const FSRef &folder, const Options &options, FSCatalogInfoBitmap whichInfo, Listing &listing)
{
    ReferenceList references;
    OSErr result = references.fill(invocation.plugin, folder, listing.changedMeanwhile);
    for (UInt32 index = 0; result == noErr && index < references.count(); ++index)
    {
        ShownObject object;
        result = lookAt(references.at(index), whichInfo, object);
        if (result == fnfErr)
            result = noErr;
        else if (result == noErr && (options.withHidden || !isHidden(object)))
            listing.objects.push_back(std::move(object));
    }
    return result;
}

OSStatus list(Invocation &invocation, const std::string &path, const Options &options, FSCatalogInfoBitmap whichInfo, Listing &listing)
{
    FSRef ref;
    ShownObject object;
    OSStatus result = findObject(path, options.links, ref);
    if (result == noErr)
        result = lookAt(ref, whichInfo | kFSCatInfoNodeFlags, object);
    if (result != noErr)
        return result;
    listing.isFolder = isFolder(object.catalog);
    if (listing.isFolder)
        return listFolder(invocation, ref, options, whichInfo, listing);
    object.name = path;
    listing.objects.push_back(std::move(object));
    return noErr;
}

// Folders have no type and come first.
std::tuple<bool, OSType, OSType> codesOf(const ShownObject &object)
{
    if (isFolder(object.catalog))
        return {false, 0, 0};
    FinderInfo finder = finderInfoOf(object.catalog);
    return {true, finder.file.fileType, finder.file.fileCreator};
}

bool comesBefore(const ShownObject &one, const ShownObject &other, Order order)
{
    UInt64 sizes[] = {totalSizeOf(one.catalog), totalSizeOf(other.catalog)};
    const UTCDateTime dates[] = {one.catalog.contentModDate, other.catalog.contentModDate};
    if (order == Order::size && sizes[0] != sizes[1])
        return sizes[0] > sizes[1];
    if (order == Order::date && !sameDate(dates[0], dates[1]))
        return std::pair(secondsSince1904(dates[0]), dates[0].fraction + 0) > std::pair(secondsSince1904(dates[1]), dates[1].fraction + 0);
    if (order == Order::type && codesOf(one) != codesOf(other))
        return codesOf(one) < codesOf(other);
    return nameComesBefore(one, other);
}

void arrange(std::vector<ShownObject> &objects, const Options &options)
{
    auto before = [&](const ShownObject &one, const ShownObject &other) { return comesBefore(one, other, options.order); };
    if (options.order != Order::none)
        std::sort(objects.begin(), objects.end(), before);
    if (options.isReversed)
        std::reverse(objects.begin(), objects.end());
}

Json listingJson(const std::string &path, const Listing &listing)
{
    Json items = Json::array();
    for (const ShownObject &object : listing.objects)
        items.push_back(shownJson(object, listing.isFolder ? pathInFolder(path, object.name) : path));
    return {{"path", path}, {"items", std::move(items)}, {"changed_meanwhile", listing.changedMeanwhile}};
}

void showListing(const std::string &path, const Listing &listing, const Options &options, const Style &style, const char *separator)
{
    if (options.paths.size() > 1 && listing.isFolder)
        std::printf("%s%s:\n", separator, printable(path).c_str());
    ListingTable table(style);
    for (const ShownObject &object : listing.objects)
    {
        if (options.isLong)
            table.add(object);
        else
            std::printf("%s\n", shownName(object, style).c_str());
    }
    std::fputs(table.text().c_str(), stdout);
}

// What there is to see at one path, in the wanted order; nothing after a failure, which is reported.
OSStatus listAndArrange(Invocation &invocation, const std::string &path, const Options &options, const Style &style, Listing &listing)
{
    OSStatus result = list(invocation, path, options, infoNeeded(options, style), listing);
    if (result != noErr)
        invocation.report.failure(path, result);
    else if (listing.changedMeanwhile)
        invocation.report.remark(path, "was changed while it was being listed; the list may miss objects or have some twice");
    arrange(listing.objects, options);
    return result;
}

void showJson(Invocation &invocation, const Options &options)
{
    Json all = Json::array();
    for (const std::string &path : options.paths)
    {
        Listing listing;
        OSStatus result = listAndArrange(invocation, path, options, Style(false), listing);
        all.push_back(result == noErr ? listingJson(path, listing) : errorJson(path, result));
    }
    std::fputs(jsonText(all).c_str(), stdout);
}

void showText(Invocation &invocation, const Options &options)
{
    Style style = Style::forStandardOutput();
    const char *separator = "";
    for (const std::string &path : options.paths)
    {
        Listing listing;
        if (listAndArrange(invocation, path, options, style, listing) != noErr)
            continue;
        showListing(path, listing, options, style, separator);
        separator = "\n";
    }
}

Action declareLs(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.optionalPaths("PATH", options->paths, "folders to list, or files; none: the current directory");
    arguments.links(options->links);
    arguments.flag("-a,--all", options->withHidden, "hidden ones too: invisible, or with a name that begins with '.'");
    arguments.flag("-l,--long", options->isLong, "with type, creator, flags, sizes of both forks and date");
    arguments.choice("--sort", options->order,
                     {{"name", Order::name}, {"size", Order::size}, {"date", Order::date}, {"type", Order::type}, {"none", Order::none}},
                     "by name unless told otherwise; the largest and the newest come first");
    arguments.flag("--reverse", options->isReversed, "the other way round");
    arguments.json(options->json);
    return [options](Invocation &invocation) {
        if (options->paths.empty())
            options->paths.push_back(".");
        options->json ? showJson(invocation, *options) : showText(invocation, *options);
    };
}

}   // namespace

const Command lsCommand = {
    "ls",
    "List what is in folders",
    "One name a line, as it stands in paths. Under --long come before it: type and creator of a file, or what\n"
    "else it is; flags as letters; the bytes of the data fork and of the resource fork; and when it was modified,\n"
    "in local time. The letters: a alias, b bundle, c custom icon, i invisible, n name locked, s stationery, and\n"
    "L for a lock.\n",
    "  zerb ls Folder\n"
    "  zerb ls -l --sort date Folder\n"
    "  zerb ls -a --json Folder | jq -r '.[].items[] | select(.type == \"TEXT\") | .path'\n",
    declareLs,
};

}   // namespace host
