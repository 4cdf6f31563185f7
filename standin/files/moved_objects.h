// Where this process put objects, so that references made before still find them.
#pragma once

#include "standin/files/references.h"

#include <shared_mutex>

namespace standin
{

struct Place
{
    UInt32 parentID;
    std::string name;
};

// Held while an object changes its place and that is noted, so that no look-up of this process falls between the two.
class PlaceChange
{
public:
    PlaceChange();
    ~PlaceChange();
    PlaceChange(const PlaceChange &) = delete;
    PlaceChange &operator=(const PlaceChange &) = delete;
};

// Held by a look-up away from an object's own name: no object changes its place meanwhile.
class PlacesHeld
{
public:
    PlacesHeld();

private:
    std::shared_lock<std::shared_mutex> lock_;
};

// Notes that this process gave an object another place, so that references made before find it.
void noteMoved(const Object &object, UInt32 newParentID, std::string_view newName);

// Where an object that is no folder was put last. False if it was not moved, or so long ago that it is forgotten.
bool recallMoved(const Volume &volume, const Identity &identity, Place &place);

// An object that is no folder is deleted: where the disk has no births, its inode number must not lead the next one's references there.
void forgetMoved(const Object &object);

}   // namespace standin
