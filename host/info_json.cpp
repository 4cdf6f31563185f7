#include "host/object_info.h"

#include "host/catalog_json.h"
#include "host/text_encodings.h"

namespace host
{

namespace
{

Json pointJson(Point point)
{
    return {{"h", static_cast<SInt16>(point.h)}, {"v", static_cast<SInt16>(point.v)}};
}

Json rectJson(const Rect &rect)
{
    return {{"left", static_cast<SInt16>(rect.left)},
            {"top", static_cast<SInt16>(rect.top)},
            {"right", static_cast<SInt16>(rect.right)},
            {"bottom", static_cast<SInt16>(rect.bottom)}};
}

Json finderJson(const ObjectInfo &info)
{
    Json json = Json::object();
    if (info.isFolder())
    {
        json["window_bounds"] = rectJson(info.finder.folder.windowBounds);
        json["scroll_position"] = pointJson(info.extendedFinder.folder.scrollPosition);
    }
    else
    {
        OSType type = info.finder.file.fileType;
        OSType creator = info.finder.file.fileCreator;
        json["type"] = codeJson(type);
        json["type_code"] = type;
        json["creator"] = codeJson(creator);
        json["creator_code"] = creator;
    }
    json["flags"] = bitsJson(finderFlags(), info.finderFlags());
    json["label"] = labelJson(info.finderFlags());
    json["extended_flags"] = bitsJson(extendedFinderFlags(), info.extendedFlags());
    json["location"] = pointJson(info.location());
    json["put_away_folder_id"] = info.putAwayFolder();
    return json;
}

Json lockJson(const ObjectInfo &info)
{
    return {{"locked", (info.catalog.nodeFlags & kFSNodeLockedMask) != 0},
            {"may_change", info.lockCheck == noErr},
            {"check", resultJson(info.lockCheck)}};
}

Json forksJson(const FSCatalogInfo &catalog)
{
    auto fork = [&](UInt64 logical, UInt64 physical, UInt16 openMask) {
        return Json{{"logical_size", logical}, {"physical_size", physical}, {"open", (catalog.nodeFlags & openMask) != 0}};
    };
    return {{"data", fork(catalog.dataLogicalSize, catalog.dataPhysicalSize, kFSNodeDataOpenMask)},
            {"resource", fork(catalog.rsrcLogicalSize, catalog.rsrcPhysicalSize, kFSNodeResOpenMask)}};
}

Json datesJson(const FSCatalogInfo &catalog)
{
    return {{"created", dateJson(catalog.createDate)},
            {"modified", dateJson(catalog.contentModDate)},
            {"attributes_modified", dateJson(catalog.attributeModDate)},
            {"accessed", dateJson(catalog.accessDate)},
            {"backed_up", dateJson(catalog.backupDate)}};
}

Json accessJson(const ObjectInfo &info)
{
    return {{"owner_id", static_cast<UInt32>(info.permissions.userID)},
            {"group_id", static_cast<UInt32>(info.permissions.groupID)},
            {"mode", static_cast<UInt16>(info.permissions.mode)},
            {"mode_text", describeMode(info.permissions.mode)},
            {"user_limits", bitsJson(userPrivilegeLimits(), info.catalog.userPrivileges)}};
}

Json encodingJson(TextEncoding hint)
{
    std::string name = nameOfEncoding(hint);
    return {{"hint", hint}, {"name", name.empty() ? Json(nullptr) : Json(name)}};
}

}   // namespace

Json infoJson(const ObjectInfo &info)
{
    Json json = {{"path", info.path}, {"kind", kindJson(info.kind)}, {"name", info.name}, {"short_name", info.shortName}};
    json["volume"] = {{"number", static_cast<SInt16>(info.catalog.volume)}, {"name", info.volumeName}};
    json["node_id"] = static_cast<UInt32>(info.catalog.nodeID);
    json["parent_id"] = static_cast<UInt32>(info.catalog.parentDirID);
    json["finder"] = finderJson(info);
    json["lock"] = lockJson(info);
    if (info.isFolder())
        json["valence"] = static_cast<UInt32>(info.catalog.valence);
    else
        json["forks"] = forksJson(info.catalog);
    json["dates"] = datesJson(info.catalog);
    json["access"] = accessJson(info);
    json["text_encoding"] = encodingJson(info.catalog.textEncodingHint);
    return json;
}

}   // namespace host
