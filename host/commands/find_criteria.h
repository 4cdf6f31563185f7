// What `zerb find` looks for.
#pragma once

#include "host/arguments.h"
#include "host/finder_flags.h"
#include "host/name_pattern.h"

#include "platform/file_constants.h"
#include "platform/file_records.h"

#include <optional>
#include <string>

namespace host
{

// All that are given have to be met.
struct FindCriteria
{
    std::optional<OSType> type, creator;   // of files
    FlagChange flags;                      // Finder flags that have to be set, and those that have to be clear
    std::optional<int> label;
    std::optional<bool> isFolder, isLocked;
    std::optional<NamePattern> name;
    std::optional<UTCDateTime> newer, older;
    std::optional<UInt64> larger, smaller;   // of files; both forks together

    // The fields of the catalog that these criteria look at: what is not asked for costs nothing.
    FSCatalogInfoBitmap infoNeeded() const;

    // Whether so few objects can be expected to meet them that it costs less to ask those for their names than to have all names with the walk.
    bool selectsFew() const;

    // `name` is null if there is no pattern for it.
    bool areMetBy(const FSCatalogInfo &catalog, const std::string *nameInPaths) const;
};

void addCriteria(Arguments &arguments, FindCriteria &criteria);

}   // namespace host
