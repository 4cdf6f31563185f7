#include "host/commands/trees.h"

#include "host/catalog_json.h"
#include "host/four_character_codes.h"
#include "host/text.h"

#include "platform/files.h"

#include <algorithm>
#include <cctype>
#include <exception>

namespace host
{

namespace
{

struct Walk
{
    const Visit &visit;
    std::exception_ptr thrown;
};

// What is thrown must not go through the plug-in.
Boolean visitSafely(Boolean, UInt32 level, const FSCatalogInfo *catalog, const FSRef *ref, const FSSpec *, const HFSUniStr255 *name,
                    void *data)
{
    auto &walk = *static_cast<Walk *>(data);
    try
    {
        return walk.visit(level, *catalog, *ref, name);
    }
    catch (...)
    {
        walk.thrown = std::current_exception();
        return true;
    }
}

Json forkSizesJson(const FSCatalogInfo &catalog)
{
    return {{"data_size", catalog.dataLogicalSize}, {"resource_size", catalog.rsrcLogicalSize}};
}

}   // namespace

std::string pathInFolder(const std::string &folder, const std::string &name)
{
    return folder.ends_with('/') ? folder + name : folder + "/" + name;
}

std::string lastNameOf(const std::string &path)
{
    std::size_t end = path.find_last_not_of('/');
    if (end == std::string::npos)
        return path;
    std::size_t slash = path.rfind('/', end);
    return slash == std::string::npos ? path.substr(0, end + 1) : path.substr(slash + 1, end - slash);
}

OSStatus findItself(const std::string &path, FSRef &ref)
{
    std::size_t end = path.find_last_not_of('/');
    bool endsWithSlash = end != std::string::npos && end + 1 < path.size();
    OSStatus result = findObject(endsWithSlash ? path.substr(0, end + 1) : path, Links::showThemselves, ref);
    FSCatalogInfo catalog = {};
    if (result == noErr && endsWithSlash)
        result = FSGetCatalogInfo(&ref, kFSCatInfoNodeFlags, &catalog, nullptr, nullptr, nullptr);
    return result == noErr && endsWithSlash && !isFolder(catalog) ? OSStatus(errFSNotAFolder) : result;
}

OSErr walkFolder(const Plugin &plugin, const FSRef &folder, UInt32 levels, FSCatalogInfoBitmap whichInfo, bool wantName, const Visit &visit)
{
    Walk walk{visit, nullptr};
    OSErr result = plugin.FSIterateContainer(&folder, levels, whichInfo, false, wantName, visitSafely, &walk);
    if (walk.thrown)
        std::rethrow_exception(walk.thrown);
    return result;
}

bool mayBeRead(const FSRef &folder)
{
    constexpr UInt8 mayNotSeeFolders = 0x01, mayNotSeeFiles = 0x02;
    FSCatalogInfo catalog = {};
    const OSErr result = FSGetCatalogInfo(&folder, kFSCatInfoUserPrivs, &catalog, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result != afpAccessDenied;   // gone meanwhile: nobody misses it
    return (catalog.userPrivileges & (mayNotSeeFolders | mayNotSeeFiles)) == 0;
}

bool isHidden(const ShownObject &object)
{
    return object.name.starts_with('.') || (finderFlagsOf(object.catalog) & kIsInvisible) != 0;
}

std::string shownName(const ShownObject &object, const Style &style)
{
    std::string name = printable(object.name);
    if (!style.isColoured())
        return name;
    switch (kindOf(object.catalog))
    {
    case Kind::folder: return style.folder(name);
    case Kind::symbolicLink: return style.link(name);
    default: return isHidden(object) ? style.label(name) : name;
    }
}

bool nameComesBefore(const ShownObject &one, const ShownObject &other)
{
    auto lower = [](unsigned char character) { return std::tolower(character); };
    auto before = [&](unsigned char a, unsigned char b) { return lower(a) < lower(b); };
    const std::string &a = one.name;
    const std::string &b = other.name;
    if (std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), before))
        return true;
    return !std::lexicographical_compare(b.begin(), b.end(), a.begin(), a.end(), before) && a < b;
}

std::string shownCode(OSType code)
{
    if (code == 0)
        return "----";
    std::optional<std::string> text = textOfCode(code);
    return text ? *text : hexadecimal(code, 8);
}

Json shownJson(const ShownObject &object, const std::string &path)
{
    FinderInfo finder = finderInfoOf(object.catalog);
    UInt16 flags = finderFlagsOf(object.catalog);
    std::string name = lastNameOf(path);
    std::replace(name.begin(), name.end(), ':', '/');   // as Macintosh software has it
    Json json = {{"name", name}, {"path", path}, {"kind", kindJson(kindOf(object.catalog))}};
    if (!isFolder(object.catalog))
    {
        json["type"] = codeJson(finder.file.fileType);
        json["type_code"] = finder.file.fileType;
        json["creator"] = codeJson(finder.file.fileCreator);
        json["creator_code"] = finder.file.fileCreator;
        json["forks"] = forkSizesJson(object.catalog);
    }
    json["flags"] = bitsJson(finderFlags(), flags);
    json["label"] = labelJson(flags);
    json["locked"] = isLocked(object.catalog);
    json["modified"] = dateJson(object.catalog.contentModDate);
    return json;
}

}   // namespace host
