// What the file manager shows of a folder, as text, item by item, so that one state can be compared with another made at another time.
#pragma once

#include "tests/standin/test_volume.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace support
{

// Keys are "place item", such as "folder/file type". What differs from run to run (node IDs, dates of today) is left out or told only by its kind.
using FolderState = std::map<std::string, std::string>;

inline const std::int64_t oldSecond = 1000000000;   // 2001; everything before 2010 counts as set on purpose

inline std::string textOfDate(const UTCDateTime &date)
{
    bool wasSet = secondsOf(date) < 2082844800u + 1262304000u;
    return wasSet ? std::to_string(secondsOf(date)) + "+" + std::to_string(date.fraction) : "recent";
}

inline std::string textOfBytes(const UInt8 (&bytes)[16])
{
    std::string text(bytes, bytes + 16);
    std::replace(text.begin(), text.end(), '\0', '.');
    return text;
}

inline std::string textOfName(const HFSUniStr255 &name)
{
    return std::string(name.unicode, name.unicode + name.length);   // only ASCII in these tests
}

struct ListedObject
{
    std::string name;
    FSRef ref{};
};

inline std::vector<ListedObject> objectsIn(const FSRef &folder)
{
    FSIterator iterator = nullptr;
    std::vector<ListedObject> objects;
    FSRef refs[16];
    HFSUniStr255 names[16];
    EXPECT_EQ(FSOpenIterator(&folder, kFSIterateFlat, &iterator), noErr);
    for (OSErr result = noErr; result == noErr && iterator;)
    {
        ItemCount count = 0;
        result = FSGetCatalogInfoBulk(iterator, 16, &count, nullptr, kFSCatInfoNone, nullptr, refs, nullptr, names);
        EXPECT_TRUE(result == noErr || result == errFSNoMoreItems) << result;
        for (ItemCount i = 0; i < count; ++i)
            objects.push_back({textOfName(names[i]), refs[i]});
    }
    EXPECT_EQ(FSCloseIterator(iterator), noErr);
    return objects;
}

inline void addRecord(const std::string &place, const FSRef &ref, FolderState &state)
{
    FSCatalogInfo info = infoOf(ref);
    FSPermissionInfo permissions;
    std::memcpy(&permissions, info.permissions, sizeof permissions);
    state[place + " finder"] = textOfBytes(info.finderInfo) + " " + textOfBytes(info.extFinderInfo);
    state[place + " created"] = textOfDate(info.createDate);
    state[place + " backed up"] = textOfDate(info.backupDate);
    state[place + " flags"] = std::to_string(info.nodeFlags);
    state[place + " hint"] = std::to_string(info.textEncodingHint);
    state[place + " mode"] = std::to_string(permissions.mode);
    state[place + " owner"] = std::to_string(permissions.userID) + " " + std::to_string(permissions.groupID);
    if (info.nodeFlags & kFSNodeIsDirectoryMask)
        return;
    state[place + " modified"] = textOfDate(info.contentModDate);   // of a folder it follows what happens in it
}

inline void addFolder(const std::string &place, const FSRef &folder, FolderState &state)
{
    std::string names;
    for (const ListedObject &object : objectsIn(folder))
    {
        std::string inside = place + "/" + object.name;
        bool isFolder = (infoOf(object.ref, kFSCatInfoNodeFlags).nodeFlags & kFSNodeIsDirectoryMask) != 0;
        addRecord(inside, object.ref, state);
        if (isFolder)
        {
            addFolder(inside, object.ref, state);
            continue;
        }
        Bytes data = forkOf(object.ref, false), fork = forkOf(object.ref, true);
        state[inside + " data"] = std::string(data.begin(), data.end());
        state[inside + " fork"] = std::string(fork.begin(), fork.end());
    }
}

inline FolderState shown(const std::string &directory)
{
    FolderState state;
    addFolder("", refAt(directory), state);
    return state;
}

// What one state has and the other does not, for messages.
inline std::string difference(const FolderState &from, const FolderState &to)
{
    std::string text;
    const auto cut = [](const std::string &value) { return value.size() > 120 ? value.substr(0, 120) + "…" : value; };
    for (const auto &[key, value] : from)
        if (to.count(key) == 0)
            text += "\n  - " + key + " = " + cut(value);
        else if (to.at(key) != value)
            text += "\n  * " + key + " = " + cut(value) + " -> " + cut(to.at(key));
    for (const auto &[key, value] : to)
        if (from.count(key) == 0)
            text += "\n  + " + key + " = " + cut(value);
    return text;
}

// Every item is the one of either state.
inline bool isMixture(const FolderState &state, const FolderState &a, const FolderState &b)
{
    if (state.size() != a.size() || state.size() != b.size())
        return false;
    for (const auto &[key, value] : state)
        if ((a.count(key) == 0 || a.at(key) != value) && (b.count(key) == 0 || b.at(key) != value))
            return false;
    return true;
}

}   // namespace support
