// zerb set: changes types, flags, dates and locks.
#include "host/commands.h"

#include "host/catalog_changes.h"
#include "host/dates.h"
#include "host/finder_flags.h"
#include "host/four_character_codes.h"
#include "host/numbers.h"

#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::vector<std::string> paths;
    Links links = Links::follow;
    CatalogChanges changes;
};

UTCDateTime currentDate()
{
    UTCDateTime now = {};
    GetUTCDateTime(&now, kUTCDefaultOptions);
    return now;
}

void addCode(Arguments &arguments, const char *name, std::optional<OSType> &code, const char *description)
{
    arguments.text(
        name, "CODE", [&code](const std::string &text) { code = codeFromText(text); }, description);
}

void addDate(Arguments &arguments, const char *name, std::optional<UTCDateTime> &date, const char *description)
{
    arguments.text(
        name, "DATE", [&date](const std::string &text) { date = dateFromText(text, currentDate()); }, description);
}

// One of two options for one thing. Giving both is refused.
void addChoice(Arguments &arguments, const char *name, std::optional<bool> &choice, bool value, const char *description)
{
    auto choose = [&choice, value] {
        if (choice && *choice != value)
            throw UsageError("contradicts an option that says the opposite");
        choice = value;
    };
    arguments.flag(name, choose, description);
}

void addBits(Arguments &arguments, const char *name, UInt16 &bits, const char *description)
{
    auto read = [&bits](const std::string &text) { bits = static_cast<UInt16>(bits | hexadecimalFromText(text, 4)); };
    arguments.text(name, "0xNNNN", read, description);
}

void addFlagOptions(Arguments &arguments, CatalogChanges &changes)
{
    addChoice(arguments, "--invisible", changes.invisible, true, "hide it from view");
    addChoice(arguments, "--visible", changes.invisible, false, "show it again");
    addChoice(arguments, "--name-locked", changes.nameLocked, true, "its name is not to be changed");
    addChoice(arguments, "--name-unlocked", changes.nameLocked, false, "its name may be changed again");
    addChoice(arguments, "--stationery", changes.stationery, true, "opening it makes a new document");
    addChoice(arguments, "--no-stationery", changes.stationery, false, "opening it opens it");
    addChoice(arguments, "--custom-icon", changes.customIcon, true, "it has an icon of its own");
    addChoice(arguments, "--no-custom-icon", changes.customIcon, false, "it looks like others of its type");
    arguments.flag("--clear-inited", changes.clearInited, "the Finder is to look at it as if new");
    auto readFlags = [&changes](const std::string &text) { readFlagChange(text, changes.flags); };
    arguments.text("--flags", "+NAME,-NAME", readFlags, "set and clear Finder flags by name");
    addBits(arguments, "--set-flags", changes.flags.bitsToSet, "set Finder flags by value");
    addBits(arguments, "--clear-flags", changes.flags.bitsToClear, "clear Finder flags by value");
    arguments.text(
        "--label", "LABEL", [&changes](const std::string &text) { changes.label = labelFromText(text); }, "a colour, none, or 0 to 7");
}

void addDateOptions(Arguments &arguments, CatalogChanges &changes)
{
    addDate(arguments, "--created", changes.created, "when it was created");
    addDate(arguments, "--modified", changes.modified, "when its contents were changed");
    addDate(arguments, "--accessed", changes.accessed, "when it was last read");
    addDate(arguments, "--backup", changes.backedUp, "when it was backed up");
}

void checkChanges(const CatalogChanges &changes)
{
    if (changes.isEmpty())
        throw UsageError("there is nothing to change; name at least one option");
    if (UInt32 both = changes.contradictingFlags())
        throw UsageError("Finder flags " + hexadecimal(both, 4) + " are both to be set and to be cleared");
}

Action declareSet(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    CatalogChanges &changes = options->changes;
    arguments.paths("PATH", options->paths, "files, folders or links");
    arguments.links(options->links);
    addCode(arguments, "--type", changes.type, "a file's type");
    addCode(arguments, "--creator", changes.creator, "a file's creator");
    addFlagOptions(arguments, changes);
    addDateOptions(arguments, changes);
    arguments.number("--encoding", "N", changes.encodingHint, 0xFFFFFFFF, "the text encoding its name came from; 0 is Mac Roman");
    addChoice(arguments, "--lock", changes.locked, true, "protect it from changes, after everything else is done");
    addChoice(arguments, "--unlock", changes.locked, false, "take the protection away, before anything else is done");
    arguments.finalCheck([options] { checkChanges(options->changes); });
    return [options](Invocation &invocation) {
        for (const std::string &path : options->paths)
            changeObjectAt(invocation, path, options->links, options->changes);
    };
}

}   // namespace

const Command setCommand = {
    "set",
    "Change types, creators, flags, labels, dates and locks",
    "Unlocking comes first and locking last. A failure ends the work on its object: what was changed before\n"
    "it stays changed, and the next object follows.\n\n"
    "A CODE is four characters, 0x and hexadecimal digits, or 0 for none.\n"
    "A DATE is 2001-02-03 or 2001-02-03T04:05:06.5, in local time or with Z or +01:00 at its end; @SECONDS\n"
    "since 1970; now; or never.\n"
    "Finder flags by name: isOnDesk, isShared, hasNoINITs, hasBeenInited, hasCustomIcon, isStationery,\n"
    "nameLocked, hasBundle, isInvisible, isAlias.\n",
    "  zerb set --type TEXT --creator ttxt Letter.txt\n"
    "  zerb set --unlock --type 0x54455854 --creator 0 Letter.txt\n"
    "  zerb set --invisible --label red Folder\n"
    "  zerb set --flags +hasBundle,-isAlias Program\n"
    "  zerb set --created 1995-05-23T12:00:00Z --backup never --lock *.txt\n",
    declareSet,
};

}   // namespace host
