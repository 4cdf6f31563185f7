// zerb rm: deletes files, and folders with all that is in them.
#include "host/commands.h"

#include "host/commands/colon_paths.h"
#include "host/commands/deletion.h"
#include "host/commands/trees.h"
#include "host/text.h"

#include "platform/files.h"

#include <cstdio>
#include <memory>
#include <unistd.h>

namespace host
{

namespace
{

struct Options
{
    std::vector<std::string> paths;
    bool recursive = false;
    bool contentsAlone = false;
    bool force = false;
    bool verbose = false;
    bool byColonPath = false;
    PathEncoding encoding;
    ProgressWish progress;
};

struct Target
{
    FSRef ref;
    FSCatalogInfo catalog;
};

OSStatus findTarget(const std::string &path, Target &target)
{
    OSStatus result = findItself(path, target.ref);
    if (result != noErr)
        return result;
    target.catalog = {};
    return FSGetCatalogInfo(&target.ref, kindInfo | kFSCatInfoNodeID, &target.catalog, nullptr, nullptr, nullptr);
}

// Why this is not to be deleted, or null.
const char *objectionTo(const std::string &path, const Target &target, const Options &options)
{
    std::string name = lastNameOf(path);
    if (target.catalog.nodeID == fsRtDirID && isFolder(target.catalog))
        return "is the root of a volume, which is not deleted here";
    if (name == "." || name == "..")
        return "does not name what is to be deleted; name it from outside";
    if (!isFolder(target.catalog))
        return options.contentsAlone ? "is no folder and has no contents to be deleted" : nullptr;
    return options.recursive || options.contentsAlone ? nullptr : "is a folder; with -r it is deleted with all that is in it";
}

std::string questionOn(const std::string &path, const Target &target, const Options &options)
{
    std::string shown = "\"" + printable(path) + "\"";
    if (options.contentsAlone)
        return "Delete all that is in the folder " + shown + ", locked objects too?";
    if (isFolder(target.catalog))
        return "Delete the folder " + shown + " and all that is in it, locked objects too?";
    return "Delete " + shown + "?";
}

// Whether a person says so. The end of the input is a no.
bool isConfirmed(const std::string &question)
{
    std::fflush(stdout);
    std::fprintf(stderr, "%s [y/N] ", question.c_str());
    std::fflush(stderr);
    std::string answer;
    for (int character; (character = std::getchar()) != EOF && character != '\n';)
        answer += static_cast<char>(character);
    return answer == "y" || answer == "Y" || answer == "yes";
}

std::string whatIsLeft(const TreeCount &left)
{
    std::string files = std::to_string(left.files) + (left.files == 1 ? " file" : " files");
    return files + " and " + std::to_string(left.folders) + (left.folders == 1 ? " folder are" : " folders are") + " left in it";
}

void deleteTarget(Invocation &invocation, const std::string &path, const Target &target, const Options &options)
{
    if (!isFolder(target.catalog))
    {
        OSErr result = FSDeleteObject(&target.ref);
        if (result != noErr)
            return invocation.report.failure(path, result);
    }
    else
    {
        DeletionScope scope = options.contentsAlone ? DeletionScope::contentsAlone : DeletionScope::folderAndContents;
        OSErr result = deleteTree(invocation.plugin, target.ref, scope, progressStyle(options.progress));
        if (result != noErr)
        {
            invocation.report.failure(path, result, "deleting stopped");
            return invocation.report.remark(path, whatIsLeft(countTree(invocation.plugin, target.ref)));
        }
    }
    if (options.verbose)
        std::printf("%s%s\n", options.contentsAlone ? "emptied " : "deleted ", printable(path).c_str());
}

// Whether this may go; where nobody can be asked, that is reported.
bool mayDelete(Invocation &invocation, const std::string &path, const std::string &question, const Options &options)
{
    if (options.force || isatty(STDIN_FILENO) != 0)
        return options.force || isConfirmed(question);
    invocation.report.problem(path, "is not deleted: there is no terminal to ask at; --force deletes without asking");
    return false;
}

void deleteByColonPath(Invocation &invocation, const std::string &path, const Options &options)
{
    const std::string question = "Delete \"" + printable(path) + "\"?";
    if (mayDelete(invocation, path, question, options) && deleteColonPath(invocation, path, options.encoding) && options.verbose)
        std::printf("deleted %s\n", printable(path).c_str());
}

void deleteAt(Invocation &invocation, const std::string &path, const Options &options)
{
    if (options.byColonPath)
        return deleteByColonPath(invocation, path, options);
    Target target;
    OSStatus result = findTarget(path, target);
    if (result != noErr)
        return invocation.report.failure(path, result);
    if (const char *objection = objectionTo(path, target, options))
        return invocation.report.problem(path, objection);
    if (mayDelete(invocation, path, questionOn(path, target, options), options))
        deleteTarget(invocation, path, target, options);
}

Action declareRm(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("PATH", options->paths, "files, folders or links; a link is deleted itself, never what it leads to");
    const Arguments::Item recursive = arguments.flag("-r,--recursive", options->recursive, "folders too, with all that is in them");
    const Arguments::Item contents = arguments.flag("--contents", options->contentsAlone, "all that is in folders; they themselves stay");
    arguments.flag("-f,--force", options->force, "do not ask");
    arguments.flag("-v,--verbose", options->verbose, "say what was deleted");
    const Arguments::Item colon = arguments.flag("--colon", options->byColonPath,
                                                 "PATH is a path with colons, of a file or an empty folder; here links are followed");
    colon.excludes(recursive).excludes(contents);
    addPathEncodingOption(arguments, options->encoding).needs(colon);
    arguments.progress(options->progress);
    return [options](Invocation &invocation) {
        for (const std::string &path : options->paths)
            deleteAt(invocation, path, *options);
    };
}

}   // namespace

const Command rmCommand = {
    "rm",
    "Delete files, and folders with their contents",
    "Asks at the terminal before each PATH; without a terminal nothing is deleted unless --force is given.\n"
    "A locked file is refused when it is named itself; inside a folder locked objects are unlocked and deleted.\n"
    "The first failure inside a folder ends the deletion of that folder, and says how much is left; the next PATH\n"
    "follows. Resource forks and other metadata go with their file.\n",
    "  zerb rm Letter.txt\n"
    "  zerb rm -r Folder\n"
    "  zerb rm --force --contents --progress Trash\n"
    "  zerb rm -- -odd-name\n"
    "  zerb rm --colon :Work:Notes\n",
    declareRm,
};

}   // namespace host
