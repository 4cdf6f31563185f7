// zerb find: looks for objects in whole trees, and says where they are while it goes.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/commands/find_criteria.h"
#include "host/commands/trees.h"
#include "host/text.h"

#include "platform/files.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <utility>

namespace host
{

namespace
{

enum class Form
{
    lines,
    endedByZero,
    json
};

struct Options
{
    std::vector<std::string> paths;
    Links links = Links::follow;
    UInt32 levels = 0;
    Form form = Form::lines;
    FindCriteria criteria;
};

// The way from the folder where the search began to where it is. A folder's name is asked for when a path needs it, and then remembered.
class Way
{
public:
    explicit Way(const std::string &start) : path_(pathInFolder(start, "")), ends_{path_.size()} {}

    // The walk has come to this folder, before what is inside it.
    void enter(UInt32 level, const FSRef &folder, const std::string *name)
    {
        folders_.resize(level - 1);
        folders_.push_back({folder, name != nullptr ? *name : std::string()});
        ends_.resize(std::min<std::size_t>(ends_.size(), level));
    }

    // Of what is in the folder of the level above. Good until the next one.
    const std::string &pathOf(UInt32 level, const std::string &name)
    {
        ends_.resize(std::min<std::size_t>(ends_.size(), level));
        path_.resize(ends_.back());
        while (ends_.size() < level)
        {
            path_.append(nameOf(folders_[ends_.size() - 1])).push_back('/');
            ends_.push_back(path_.size());
        }
        return path_ += name;
    }

    const std::string &pathOfFolder(UInt32 level) { return pathOf(level, nameOf(folders_[level - 1])); }

private:
    struct Folder
    {
        FSRef ref;
        std::string name;   // empty until it was needed
    };

    static const std::string &nameOf(Folder &folder);

    std::vector<Folder> folders_;
    std::string path_;                // that was needed last
    std::vector<std::size_t> ends_;   // of the parts of it that lead to the start, to the folder of level 1, and so on, with their '/'
};

// Null if the object has gone meanwhile.
std::optional<std::string> nameOfObject(const FSRef &ref)
{
    HFSUniStr255 name = {};
    if (FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, &name, nullptr, nullptr) != noErr)
        return std::nullopt;
    return pathComponentFromName(name);
}

const std::string &Way::nameOf(Folder &folder)
{
    if (folder.name.empty())
        folder.name = nameOfObject(folder.ref).value_or("?");   // gone, and what was found in it with it
    return folder.name;
}

// Says where objects are, at once.
class Output
{
public:
    explicit Output(Form form) : form_(form)
    {
        if (form == Form::json)
            array_.emplace();
    }

    void object(const std::string &path, const FSCatalogInfo &catalog)
    {
        if (form_ == Form::json)
            array_->add({{"path", path}, {"kind", isFolder(catalog) ? "folder" : "file"}});
        else if (form_ == Form::lines)
            std::puts(isPlainAscii(path) ? path.c_str() : printable(path).c_str());
        else
            std::fwrite(path.c_str(), 1, path.size() + 1, stdout);
    }

    void failure(const std::string &path, OSStatus result)
    {
        if (form_ == Form::json)
            array_->add(errorJson(path, result));
    }

private:
    Form form_;
    std::optional<JsonArrayOutput> array_;
};

// One search below one folder. What nobody asked for costs nothing for each object: names come with the walk only where most are wanted.
class Search
{
public:
    Search(const std::string &start, const FindCriteria &criteria, Output &output, Report &report)
        : criteria_(criteria), output_(output), report_(report), way_(start), namesComeAlong_(criteria.name || !criteria.selectsFew())
    {
    }

    OSErr run(const Plugin &plugin, const FSRef &folder, UInt32 levels)
    {
        levels_ = levels;
        if (!mayBeRead(folder))
            return afpAccessDenied;
        auto look = [this](UInt32 level, const FSCatalogInfo &catalog, const FSRef &ref, const HFSUniStr255 *name) {
            checkEntered(level);
            visit(level, catalog, ref, name);
            return false;
        };
        const OSErr result = walkFolder(plugin, folder, levels, criteria_.infoNeeded(), namesComeAlong_, look);
        checkEntered(0);
        return result;
    }

private:
    void visit(UInt32 level, const FSCatalogInfo &catalog, const FSRef &ref, const HFSUniStr255 *unicodeName)
    {
        std::optional<std::string> name;
        if (unicodeName != nullptr)
            name = pathComponentFromName(*unicodeName);
        if (criteria_.areMetBy(catalog, name ? &*name : nullptr))
        {
            if (!name)
                name = nameOfObject(ref);
            if (name)
                output_.object(way_.pathOf(level, *name), catalog);
        }
        if (isFolder(catalog))
            enter(level, ref, name);
    }

    void enter(UInt32 level, const FSRef &folder, const std::optional<std::string> &name)
    {
        way_.enter(level, folder, name ? &*name : nullptr);
        if (level != levels_)
            entered_ = {level, folder};
    }

    // A folder that may not be read gives the walk nothing, like an empty one, so only a folder in which nothing came needs to be looked at.
    // `level` is that of what comes next.
    void checkEntered(UInt32 level)
    {
        const Entered last = std::exchange(entered_, {});
        if (last.level < level || last.level == 0 || mayBeRead(last.folder))
            return;
        const std::string &path = way_.pathOfFolder(last.level);
        report_.failure(path, afpAccessDenied);
        output_.failure(path, afpAccessDenied);
    }

    // The folder that the walk came to last, while it is not known whether anything is in it. Level 0: none.
    struct Entered
    {
        UInt32 level = 0;
        FSRef folder = {};
    };

    const FindCriteria &criteria_;
    Output &output_;
    Report &report_;
    Way way_;
    UInt32 levels_ = 0;
    bool namesComeAlong_;
    Entered entered_;
};

void findAll(Invocation &invocation, const Options &options)
{
    Output output(options.form);
    for (const std::string &path : options.paths)
    {
        FSRef folder;
        OSStatus result = findObject(path, options.links, folder);
        if (result == noErr)
            result = Search(path, options.criteria, output, invocation.report).run(invocation.plugin, folder, options.levels);
        if (result == noErr)
            continue;
        invocation.report.failure(path, result);
        output.failure(path, result);
    }
}

Action declareFind(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.optionalPaths("PATH", options->paths, "folders to look in; none: the current directory");
    arguments.links(options->links);
    addCriteria(arguments, options->criteria);
    arguments.number("--levels", "N", options->levels, 0xFFFFFFFF, "how deep to go; 0, or without this option: all the way");
    Arguments::Item json = arguments.flag(
        "--json", [options] { options->form = Form::json; }, "one array with one object for each that was found");
    arguments
        .flag(
            "-0,--null", [options] { options->form = Form::endedByZero; }, "paths as they are, each ended by a zero byte")
        .excludes(json);
    arguments.finalCheck([options] {
        if (options->criteria.flags.bitsToSet & options->criteria.flags.bitsToClear)
            throw UsageError("no object has a Finder flag both set and clear");
    });
    return [options](Invocation &invocation) {
        if (options->paths.empty())
            options->paths.push_back(".");
        findAll(invocation, *options);
    };
}

}   // namespace

const Command findCommand = {
    "find",
    "Look for files and folders by what is known of them",
    "Shows the paths of all objects below each PATH that meet every criterion, as they are found; the PATH itself\n"
    "is not among them. Without a criterion that is all of them, hidden ones too. Symbolic links are not followed.\n"
    "Of a folder that may not be read only that is said, and the search goes on.\n",
    "  zerb find --type TEXT --creator ttxt Projects\n"
    "  zerb find --locked -0 | xargs -0 zerb set --unlock --\n"
    "  zerb find --kind folder --iname 'old*' --older 2001-01-01\n"
    "  zerb find --flags +hasBundle,-isInvisible --larger 1M --json /Applications\n",
    declareFind,
};

}   // namespace host
