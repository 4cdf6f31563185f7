// Every function on volumes with each of its platform calls failing, but for the list, which has a test of its own.

#include "tests/contract/failing_calls.h"
#include "tests/contract/rows.h"
#include "tests/contract/volumes_fixture.h"

namespace
{

using Row = FailingCallsRow<VolumeResults>;
using Results = Patterned<VolumeResults>;

const Row rows[] = {
    {"VolParms", [](PlatformDouble &, Results &r) { return FSGetVolParms(-100, 32, &r.parameters, &r.parametersSize); }, 1},
    {"VRefNum", [](PlatformDouble &platform, Results &r) { return FSGetVRefNum(&platform.files.ref("file"), &r.number); }, 1},
    {"VInfo", [](PlatformDouble &, Results &r) { return FSGetVInfo(-100, &r.name, &r.freeBytes, &r.totalBytes); }, 1},
    {"VInfoOfNothing", [](PlatformDouble &, Results &) { return FSGetVInfo(-100, nullptr, nullptr, nullptr); }, 1},
    {"FileSystemID", [](PlatformDouble &, Results &r) { return FSGetVolFileSystemID(-100, &r.fileSystemID, &r.signature); }, 1},
    {"FileSystemIDOfNothing", [](PlatformDouble &, Results &) { return FSGetVolFileSystemID(-100, nullptr, nullptr); }, 1},
    {"MountInfoSize", [](PlatformDouble &, Results &r) { return FSGetVolMountInfoSize(-100, &r.recordSize); }, 1},
    {"MountInfo", [](PlatformDouble &, Results &r) { return FSGetVolMountInfo(-100, r.record); }, 1},
    {"VolumeMount",
     [](PlatformDouble &platform, Results &r) { return FSVolumeMount(platform.mounting.records.at(-100).data(), &r.number); }, 1},
};

class VolumesFailures : public testing::TestWithParam<Row>
{
};

TEST_P(VolumesFailures, EachCallFailingEndsTheFunctionAndNothingIsWritten)
{
    expectEachFailureToEnd(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Rows, VolumesFailures, testing::ValuesIn(rows), rowName);

}   // namespace
