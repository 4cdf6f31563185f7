#include "host/commands/moving.h"

#include "host/catalog_reading.h"
#include "host/text.h"

#include "platform/files.h"
#include "platform/text.h"

namespace host
{

namespace
{

constexpr std::size_t longestShortName = 31;

const UniChar *unitsOf(const std::optional<HFSUniStr255> &name)
{
    return name ? name->unicode : nullptr;
}

UniCharCount lengthOf(const std::optional<HFSUniStr255> &name)
{
    return name ? name->length : 0;
}

Moved moveNatively(const Plugin &plugin, const FSRef &object, const FSRef &folder, const std::optional<HFSUniStr255> &name)
{
    return {plugin.FSMoveRename(&object, &folder, lengthOf(name), unitsOf(name), kTextEncodingUnknown, nullptr), "in one step"};
}

Moved moveInSteps(const Plugin &plugin, const FSRef &object, const FSRef &folder, const std::optional<HFSUniStr255> &name)
{
    FSRef moved;
    OSErr result = plugin.FSMoveRenameObjectUnicode(&object, &folder, lengthOf(name), unitsOf(name), kTextEncodingUnknown, &moved);
    return {result, name ? "by way of a temporary name" : "by moving"};
}

// A name that comes back from the short form that the native way makes of it.
bool isPlain(const HFSUniStr255 &name)
{
    std::optional<std::string> shortName = macRomanFromUtf8(bytesFromName(name));
    return shortName && shortName->size() <= longestShortName && utf8FromMacRoman(*shortName) == bytesFromName(name);
}

bool isFile(const FSRef &object)
{
    FSCatalogInfo catalog = {};
    return FSGetCatalogInfo(&object, kFSCatInfoNodeFlags, &catalog, nullptr, nullptr, nullptr) == noErr && !isFolder(catalog);
}

}   // namespace

void addMovingWays(Arguments &arguments, MovingWay &way)
{
    Arguments::Item native = arguments.flag(
        "--native", [&way] { way = MovingWay::native; }, "only files, in one step of the volume's own; short names");
    arguments
        .flag(
            "--compat", [&way] { way = MovingWay::compat; }, "in steps, which every volume can do")
        .excludes(native);
}

HFSUniStr255 nameFromText(const std::string &text)
{
    if (text.empty())
        throw UsageError("a name cannot be empty");
    if (text.find('/') != std::string::npos)
        throw UsageError("\"" + text + "\" is no name: it has a '/'");
    std::optional<HFSUniStr255> name = nameFromPathComponent(text);
    if (!name)
        throw UsageError("\"" + text + "\" is longer than a name can be");
    return *name;
}

Moved moveObject(const Plugin &plugin, const FSRef &object, const FSRef &folder, const std::optional<HFSUniStr255> &name, MovingWay way)
{
    if (way == MovingWay::native)
        return moveNatively(plugin, object, folder, name);
    if (way == MovingWay::automatic && name && isPlain(*name) && isFile(object))
    {
        Moved moved = moveNatively(plugin, object, folder, name);
        if (moved.result != paramErr)   // the volume cannot do that
            return moved;
    }
    return moveInSteps(plugin, object, folder, name);
}

}   // namespace host
