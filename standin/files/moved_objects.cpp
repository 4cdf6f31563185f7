#include "standin/files/moved_objects.h"

#include <list>
#include <mutex>
#include <unordered_map>

namespace standin
{

namespace
{

struct MovedTable
{
    static constexpr std::size_t most = 65536;
    std::mutex mutex;
    std::unordered_map<std::uint64_t, std::list<std::pair<std::uint64_t, Place>>::iterator> byObject;
    std::list<std::pair<std::uint64_t, Place>> places;   // the oldest first
};

// Look-ups away from an object's own name share it; a change of place has it alone.
std::shared_mutex &placeMutex()
{
    static std::shared_mutex mutex;
    return mutex;
}

MovedTable &moved()
{
    static MovedTable table;
    return table;
}

std::uint64_t keyOf(const Volume &volume, const Identity &identity)
{
    return (identity.inode * 0x9E3779B97F4A7C15u) ^ (identity.device << 16) ^ static_cast<UInt16>(volume.number);
}

}   // namespace

PlaceChange::PlaceChange()
{
    placeMutex().lock();
}

PlaceChange::~PlaceChange()
{
    placeMutex().unlock();
}

PlacesHeld::PlacesHeld() : lock_(placeMutex()) {}

bool recallMoved(const Volume &volume, const Identity &identity, Place &place)
{
    const std::lock_guard lock(moved().mutex);
    const auto found = moved().byObject.find(keyOf(volume, identity));
    if (found == moved().byObject.end())
        return false;
    place = found->second->second;
    return true;
}

void noteMoved(const Object &object, UInt32 newParentID, std::string_view newName)
{
    if (object.isFolder())
    {
        rememberFolder(*object.volume, newParentID, newName, object.identity());
        return;
    }
    const std::uint64_t key = keyOf(*object.volume, object.identity());
    const std::lock_guard lock(moved().mutex);
    auto &[mutex, byObject, places] = moved();
    if (const auto known = byObject.find(key); known != byObject.end())
    {
        known->second->second.parentID = newParentID;
        known->second->second.name = newName;
        places.splice(places.end(), places, known->second);
        return;
    }
    places.emplace_back(key, Place{newParentID, std::string(newName)});
    byObject.emplace(key, std::prev(places.end()));
    if (places.size() > MovedTable::most)
    {
        byObject.erase(places.front().first);
        places.pop_front();
    }
}

void forgetMoved(const Object &object)
{
    const std::lock_guard lock(moved().mutex);
    auto &[mutex, byObject, places] = moved();
    const auto known = byObject.find(keyOf(*object.volume, object.identity()));
    if (known == byObject.end())
        return;
    places.erase(known->second);
    byObject.erase(known);
}

}   // namespace standin
