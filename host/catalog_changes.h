// Changes to what the catalog knows of an object, as many at once as are wanted, and making them in the right order.
#pragma once

#include "host/command.h"
#include "host/finder_flags.h"
#include "host/objects.h"

#include <optional>
#include <string>

namespace host
{

// What is to be changed; whatever is not given stays.
struct CatalogChanges
{
    std::optional<OSType> type, creator;   // 0 is a code like any other here
    std::optional<bool> invisible, nameLocked, stationery, customIcon;
    bool clearInited = false;
    FlagChange flags;
    std::optional<int> label;
    std::optional<UTCDateTime> created, modified, accessed, backedUp;
    std::optional<TextEncoding> encodingHint;
    std::optional<bool> locked;

    bool isEmpty() const;

    // Finder flags that would have to be both set and cleared.
    UInt16 contradictingFlags() const;
};

// Makes the changes to one object: unlocking, codes, flags, dates and encoding, locking. The first failure ends it and is reported with what was
// being done. A date of which the disk kept something else is reported too.
void changeObjectAt(Invocation &invocation, const std::string &path, Links links, const CatalogChanges &changes);

}   // namespace host
