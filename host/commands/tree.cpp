// zerb tree: shows what is in a folder, level by level.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/commands/trees.h"
#include "host/text.h"

#include "platform/files.h"

#include <algorithm>
#include <cstdio>
#include <deque>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::string path = ".";
    Links links = Links::follow;
    UInt32 levels = 0;
    bool withHidden = false;
    bool json = false;
};

struct Node
{
    ShownObject object;
    std::vector<Node *> items;
};

struct Totals
{
    UInt64 folders = 0, others = 0, dataBytes = 0, resourceBytes = 0;
};

constexpr FSCatalogInfoBitmap treeInfo = shownInfo;

// The objects of a walk as a tree. A folder comes before what is inside it, so its level says where an object belongs.
class Tree
{
public:
    Tree(const std::string &path, bool withHidden) : withHidden_(withHidden)
    {
        nodes_.emplace_back().object.name = path;
        openFolders_.push_back(&nodes_.front());
    }

    // False if it is not shown.
    bool add(UInt32 level, const FSCatalogInfo &catalog, const HFSUniStr255 &name)
    {
        if (hiddenLevel_ != 0 && level > hiddenLevel_)
            return false;
        hiddenLevel_ = 0;
        Node node{{pathComponentFromName(name), catalog}, {}};
        if (!withHidden_ && isHidden(node.object))
        {
            hiddenLevel_ = level;
            return false;
        }
        count(catalog);
        Node *kept = &nodes_.emplace_back(std::move(node));
        openFolders_.resize(level);
        openFolders_.back()->items.push_back(kept);
        openFolders_.push_back(kept);
        return true;
    }

    // Of the object that was shown last.
    std::string pathOfLast() const
    {
        std::string path = root().object.name;
        for (std::size_t level = 1; level < openFolders_.size(); ++level)
            path = pathInFolder(path, openFolders_[level]->object.name);
        return path;
    }

    void sort()
    {
        for (Node &node : nodes_)
            std::sort(node.items.begin(), node.items.end(),
                      [](const Node *one, const Node *other) { return nameComesBefore(one->object, other->object); });
    }

    const Node &root() const { return nodes_.front(); }
    const Totals &totals() const { return totals_; }

private:
    void count(const FSCatalogInfo &catalog)
    {
        ++(isFolder(catalog) ? totals_.folders : totals_.others);
        if (isFolder(catalog))
            return;
        totals_.dataBytes += catalog.dataLogicalSize;
        totals_.resourceBytes += catalog.rsrcLogicalSize;
    }

    bool withHidden_;
    std::deque<Node> nodes_;   // the nodes stay where they are
    std::vector<Node *> openFolders_;
    UInt32 hiddenLevel_ = 0;   // of a hidden folder, whose contents are passed over; 0 for none
    Totals totals_;
};

std::string details(const FSCatalogInfo &catalog)
{
    if (kindOf(catalog) != Kind::file)
        return "";
    FinderInfo finder = finderInfoOf(catalog);
    std::string sizes = grouped(catalog.dataLogicalSize);
    if (catalog.rsrcLogicalSize != 0)
        sizes += " + " + grouped(catalog.rsrcLogicalSize);
    return "  " + shownCode(finder.file.fileType) + " " + shownCode(finder.file.fileCreator) + "  " + sizes;
}

// Depth first, with the lines that lead to each object. Not recursive: a tree may be deeper than the stack.
class Drawing
{
public:
    explicit Drawing(const Style &style) : style_(style) {}

    void draw(const Node &root)
    {
        std::printf("%s\n", style_.folder(printable(root.object.name)).c_str());
        places_.push_back({&root, 0});
        while (!places_.empty())
            step();
    }

private:
    struct Place
    {
        const Node *folder;
        std::size_t next;
    };

    void step()
    {
        Place &place = places_.back();
        if (place.next == place.folder->items.size())
        {
            places_.pop_back();
            lines_.resize(lines_.size() - std::min<std::size_t>(lines_.size(), 1));
            return;
        }
        const Node &node = *place.folder->items[place.next++];
        bool isLast = place.next == place.folder->items.size();
        for (bool goesOn : lines_)
            std::fputs(goesOn ? "│   " : "    ", stdout);
        std::printf("%s%s%s\n", isLast ? "└── " : "├── ", shownName(node.object, style_).c_str(),
                    style_.label(details(node.object.catalog)).c_str());
        if (node.items.empty())
            return;
        lines_.push_back(!isLast);
        places_.push_back({&node, 0});
    }

    const Style &style_;
    std::vector<Place> places_;
    std::vector<bool> lines_;   // for each level but the last: whether its folder has more to come
};

std::string counted(UInt64 count, const char *one, const char *several)
{
    return grouped(count) + " " + (count == 1 ? one : several);
}

void showText(const Tree &tree)
{
    Drawing(Style::forStandardOutput()).draw(tree.root());
    const Totals &totals = tree.totals();
    std::printf("\n%s, %s; %s in data forks, %s in resource forks\n", counted(totals.folders, "folder", "folders").c_str(),
                counted(totals.others, "file", "files").c_str(), counted(totals.dataBytes, "byte", "bytes").c_str(),
                grouped(totals.resourceBytes).c_str());
}

Json nodeJson(const Node &node, const std::string &path)
{
    Json json = shownJson(node.object, path);
    if (!isFolder(node.object.catalog))
        return json;
    Json items = Json::array();
    for (const Node *item : node.items)
        items.push_back(nodeJson(*item, pathInFolder(path, item->object.name)));
    json["items"] = std::move(items);
    return json;
}

void showJson(const Tree &tree)
{
    const Totals &totals = tree.totals();
    Json items = Json::array();
    for (const Node *item : tree.root().items)
        items.push_back(nodeJson(*item, pathInFolder(tree.root().object.name, item->object.name)));
    Json totalsJson = {
        {"folders", totals.folders}, {"files", totals.others}, {"data_size", totals.dataBytes}, {"resource_size", totals.resourceBytes}};
    std::fputs(jsonText({{"path", tree.root().object.name}, {"items", std::move(items)}, {"totals", std::move(totalsJson)}}).c_str(),
               stdout);
}

void showTree(Invocation &invocation, const Options &options)
{
    FSRef folder;
    OSStatus result = findObject(options.path, options.links, folder);
    Tree tree(options.path, options.withHidden);
    auto add = [&](UInt32 level, const FSCatalogInfo &catalog, const FSRef &ref, const HFSUniStr255 *name) {
        const bool isShown = tree.add(level, catalog, *name);
        if (isShown && isFolder(catalog) && level != options.levels && !mayBeRead(ref))
            invocation.report.failure(tree.pathOfLast(), afpAccessDenied);
        return false;
    };
    if (result == noErr && !mayBeRead(folder))
        result = afpAccessDenied;
    if (result == noErr)
        result = walkFolder(invocation.plugin, folder, options.levels, treeInfo, true, add);
    if (result != noErr)
        invocation.report.failure(options.path, result);
    if (result != noErr && tree.root().items.empty())
        return options.json ? void(std::fputs(jsonText(errorJson(options.path, result)).c_str(), stdout)) : void();
    tree.sort();
    options.json ? showJson(tree) : showText(tree);
}

Action declareTree(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.optionalPath("PATH", options->path, "the folder; none: the current directory");
    arguments.links(options->links);
    arguments.number("--levels", "N", options->levels, 0xFFFFFFFF, "how deep to go; 0, or without this option: all the way");
    arguments.flag("-a,--all", options->withHidden, "hidden ones too: invisible, or with a name that begins with '.'");
    arguments.json(options->json, "one object: \"path\", \"items\" within each other, and \"totals\"; or \"path\" and \"error\"");
    return [options](Invocation &invocation) { showTree(invocation, *options); };
}

}   // namespace

const Command treeCommand = {
    "tree",
    "Show a folder's contents, level by level",
    "Behind a file's name stand its type and creator and the bytes of its data fork, + those of its resource\n"
    "fork if it has any. Symbolic links are not followed. A folder that may not be read is named on standard\n"
    "error, and looks empty.\n",
    "  zerb tree Projects\n"
    "  zerb tree -a --levels 2 Projects\n"
    "  zerb tree --json Projects | jq .totals\n",
    declareTree,
};

}   // namespace host
