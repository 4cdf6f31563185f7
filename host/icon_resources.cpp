#include "host/icon_resources.h"

#include "host/text.h"
#include "host/usage_error.h"

#include <algorithm>
#include <map>

namespace host
{

namespace
{

struct Entry
{
    SInt16 id = 0;
    std::string name;
    long size = 0;
};

std::vector<Entry> entriesOf(ResType type)
{
    std::vector<Entry> entries;
    const SInt16 count = Count1Resources(type);
    for (int index = 1; index <= count; ++index)
    {
        Handle resource = Get1IndResource(type, static_cast<SInt16>(index));
        if (resource == nullptr)
            continue;
        Entry entry;
        Str255 name = {};
        GetResInfo(resource, &entry.id, nullptr, name);
        entry.name = utf8FromPascal(name);
        entry.size = std::max(GetResourceSizeOnDisk(resource), 0L);
        entries.push_back(std::move(entry));
    }
    return entries;
}

// The stand-in decides which bytes make an icon: it is asked for a suite of that member alone.
bool isDrawable(SInt16 id, const IconMemberType &type)
{
    IconSuiteRef suite = nullptr;
    GetIconSuite(&suite, id, type.selector);
    if (suite == nullptr)
        return false;
    DisposeIconSuite(suite, true);
    return true;
}

void addMember(IconFamily &family, const IconMemberType &type, const Entry &entry)
{
    if (!family.members.empty() && family.members.back().type == &type)
        return;
    family.id = entry.id;
    if (family.name.empty())
        family.name = entry.name;
    family.members.push_back({&type, entry.size, isDrawable(entry.id, type)});
}

std::vector<IconFamily> familiesOfCurrentFile()
{
    std::map<SInt16, IconFamily> byID;
    for (const IconMemberType &type : iconMemberTypes)
        for (const Entry &entry : entriesOf(type.type))
            addMember(byID[entry.id], type, entry);
    std::vector<IconFamily> families;
    for (auto &[id, family] : byID)
        families.push_back(std::move(family));
    return families;
}

std::vector<SmallIconList> listsOfCurrentFile()
{
    std::map<SInt16, SmallIconList> byID;
    for (const Entry &entry : entriesOf(smallIconListType))
        byID.insert({entry.id, {entry.id, entry.name, entry.size / smallIconSize}});
    std::vector<SmallIconList> lists;
    for (auto &[id, list] : byID)
        lists.push_back(std::move(list));
    return lists;
}

template <typename Item>
std::string idsOfItems(const std::vector<Item> &items)
{
    constexpr std::size_t most = 12;
    std::string text;
    for (std::size_t index = 0; index < std::min(items.size(), most); ++index)
    {
        const bool isLast = index + 1 == items.size() && index > 0;
        text += (index == 0 ? "" : isLast ? " and " : ", ") + std::to_string(items[index].id);
    }
    if (items.size() > most)
        text += " and " + std::to_string(items.size() - most) + " more";
    return text.empty() ? "none" : text;
}

}   // namespace

IconResources iconsOfCurrentFile()
{
    return {familiesOfCurrentFile(), listsOfCurrentFile()};
}

std::string idsOf(const std::vector<IconFamily> &families)
{
    return idsOfItems(families);
}

std::string idsOf(const std::vector<SmallIconList> &lists)
{
    return idsOfItems(lists);
}

}   // namespace host
