// Volumes by their index.
#include "standin/files/mounted_disks.h"
#include "standin/files/volume_table.h"

#include <algorithm>

namespace standin
{

namespace
{

// What one thread met when it began to ask for one index after another. Numbers, not volumes: nothing is kept from going.
struct Listing
{
    std::vector<FSVolumeRefNum> numbers;
    ItemCount last = 0;   // the index that was asked for last
};

Listing &listingOfThread()
{
    thread_local Listing listing;
    return listing;
}

OSErr beginListing(Listing &listing)
{
    std::vector<VolumeHandle> volumes;
    listing.numbers.clear();
    if (OSErr result = listVolumes(volumes))
        return result;
    for (const VolumeHandle &volume : volumes)
        listing.numbers.push_back(volume->number);
    return noErr;
}

}   // namespace

// A volume that is gone meanwhile leaves its place to the next one, which was not met yet.
OSErr volumeAtIndex(ItemCount index, VolumeHandle &volume, RootHandle &root)
{
    Listing &listing = listingOfThread();
    const bool goesOn = index > 1 && (index == listing.last || index == listing.last + 1);
    listing.last = 0;
    if (!goesOn)
        if (OSErr result = beginListing(listing))
            return result;
    while (index >= 1 && index <= listing.numbers.size())
    {
        const auto place = listing.numbers.begin() + static_cast<std::ptrdiff_t>(index - 1);
        volume = volumeNumbered(*place);
        const OSErr result = volume ? volume->root.open(Keeping::closed, root) : static_cast<OSErr>(nsvErr);
        listing.last = result == noErr ? index : 0;
        if (result != nsvErr)
            return result;
        listing.numbers.erase(place);
    }
    return nsvErr;
}

}   // namespace standin
