// Every function on access, file IDs and the default directory with each of its platform calls failing.

#include "tests/contract/access_fixture.h"
#include "tests/contract/failing_calls.h"
#include "tests/contract/rows.h"

namespace
{

using Row = FailingCallsRow<AccessResults>;
using Results = Patterned<AccessResults>;

const Str255 anna = {4, 'A', 'n', 'n', 'a'};

const FSRef &nested(PlatformDouble &platform)
{
    return platform.files.ref("nested");
}

OSErr resolveAnID(PlatformDouble &platform, Results &results)
{
    platform.access.fileIDs[7] = "file";
    return FSResolveFileIDRef(-100, 7, &results.ref);
}

const Row rows[] = {
    {"GetDirAccess",
     [](PlatformDouble &platform, Results &r) { return FSGetDirAccess(&nested(platform), &r.ownerID, &r.groupID, &r.rights); }, 2},
    {"GetDirAccessOfNothing",
     [](PlatformDouble &platform, Results &) { return FSGetDirAccess(&nested(platform), nullptr, nullptr, nullptr); }, 2},
    {"SetDirAccess", [](PlatformDouble &platform, Results &) { return FSSetDirAccess(&nested(platform), 1, 2, 3); }, 2},
    {"MapID", [](PlatformDouble &, Results &r) { return FSMapID(-100, 501, 1, r.name); }, 1},
    {"MapName", [](PlatformDouble &, Results &r) { return FSMapName(-100, anna, 3, &r.mappedID); }, 1},
    {"CreateFileIDRef", [](PlatformDouble &platform, Results &r) { return FSCreateFileIDRef(&platform.files.ref("file"), &r.fileID); }, 2},
    {"ResolveFileIDRef", resolveAnID, 2},
    {"SetDefault", [](PlatformDouble &platform, Results &r) { return FSSetDefault(&nested(platform), &r.ref); }, 4, true},
    {"RestoreDefault", [](PlatformDouble &platform, Results &) { return FSRestoreDefault(&nested(platform)); }, 2},
};

class AccessFailures : public testing::TestWithParam<Row>
{
};

TEST_P(AccessFailures, EachCallFailingEndsTheFunctionAndNothingIsWrittenThatWasNotBefore)
{
    expectEachFailureToEnd(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Rows, AccessFailures, testing::ValuesIn(rows), rowName);

}   // namespace
