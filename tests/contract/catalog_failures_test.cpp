// Every function with every one of its platform calls failing in turn: that call alone, and all from there on.

#include "tests/contract/catalog_fixture.h"
#include "tests/contract/rows.h"

#include <functional>
#include <ostream>
#include <set>
#include <vector>

namespace
{

constexpr OSErr code = -12345;   // no code that anything here knows

struct Arguments
{
    const FSRef file, other;
    PatternedOutputs out;
};

struct FailureCase
{
    const char *name;
    std::function<OSErr(Arguments &)> run;
    int callCount;
    std::set<int> ignored = {};   // the calls, by number, whose failure is not reported
};

void PrintTo(const FailureCase &row, std::ostream *stream)
{
    *stream << row.name;
}

// Once the object has changed, none of the four calls that bump its parent's date can spoil the result.
const std::set<int> bumpOfParent = {3, 4, 5, 6};

FailureCase flagFunction(const char *name, OSErr (*function)(const FSRef *))
{
    return {name, [function](Arguments &a) { return function(&a.file); }, 6, bumpOfParent};
}

const FailureCase failureCases[] = {
    {"RefMakeFSSpec", [](Arguments &a) { return FSRefMakeFSSpec(&a.file, &a.out.spec); }, 1},
    {"MakeFSRef", [](Arguments &a) { return FSMakeFSRef(-100, fsRtDirID, nullptr, &a.out.ref); }, 1},
    {"RefValid", [](Arguments &a) { return FSRefValid(&a.file) ? noErr : code; }, 1},
    {"GetParentRef", [](Arguments &a) { return FSGetParentRef(&a.file, &a.out.ref); }, 1},
    {"GetFileDirName", [](Arguments &a) { return FSGetFileDirName(&a.file, &a.out.name); }, 1},
    {"GetNodeID", [](Arguments &a) { return FSGetNodeID(&a.file, &a.out.nodeID, &a.out.isDirectory); }, 1},
    {"GetNodeIDOfNothing", [](Arguments &a) { return FSGetNodeID(&a.file, nullptr, nullptr); }, 1},
    {"GetUserPrivilegesPermissions",
     [](Arguments &a) { return FSGetUserPrivilegesPermissions(&a.file, &a.out.userPrivileges, a.out.permissions); }, 1},
    {"CheckLock", [](Arguments &a) { return FSCheckLock(&a.file); }, 2},
    {"BumpDate", [](Arguments &a) { return FSBumpDate(&a.file); }, 4, {3, 4}},
    {"GetFinderInfo", [](Arguments &a) { return FSGetFinderInfo(&a.file, &a.out.finderInfo, &a.out.extendedInfo, &a.out.isDirectory); }, 1},
    {"SetFinderInfo", [](Arguments &a) { return FSSetFinderInfo(&a.file, &a.out.finderInfo, &a.out.extendedInfo); }, 1},
    {"ChangeCreatorType", [](Arguments &a) { return FSChangeCreatorType(&a.file, 1, 2); }, 6, bumpOfParent},
    {"ChangeFinderFlags", [](Arguments &a) { return FSChangeFinderFlags(&a.file, 1, 2); }, 6, bumpOfParent},
    flagFunction("SetInvisible", FSSetInvisible),
    flagFunction("ClearInvisible", FSClearInvisible),
    flagFunction("SetNameLocked", FSSetNameLocked),
    flagFunction("ClearNameLocked", FSClearNameLocked),
    flagFunction("SetIsStationery", FSSetIsStationery),
    flagFunction("ClearIsStationery", FSClearIsStationery),
    flagFunction("SetHasCustomIcon", FSSetHasCustomIcon),
    flagFunction("ClearHasCustomIcon", FSClearHasCustomIcon),
    flagFunction("ClearHasBeenInited", FSClearHasBeenInited),
    {"CopyFileMgrAttributes", [](Arguments &a) { return FSCopyFileMgrAttributes(&a.file, &a.other, 1); }, 2},
    {"FileRefNumGetFSRef", [](Arguments &a) { return FileRefNumGetFSRef(5, &a.out.ref); }, 1},
};

std::vector<FSCatalogInfo> recordsOf(const FilesDouble &files)
{
    std::vector<FSCatalogInfo> records;
    for (const FileObject &each : files.objects)
        records.push_back(each.info);
    return records;
}

bool sameRecords(const std::vector<FSCatalogInfo> &a, const std::vector<FSCatalogInfo> &b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(FSCatalogInfo)) == 0;
}

class CatalogFailures : public testing::TestWithParam<FailureCase>
{
protected:
    // Says whether the failure was reached; if not, the function has made its last call before.
    bool failAt(int nth, void (Recorder::*fail)(int, OSStatus))
    {
        PlatformDouble platform;
        platform.files.openForks[5] = &platform.files.object("file");
        const std::vector<FSCatalogInfo> before = recordsOf(platform.files);
        Arguments arguments = {platform.files.ref("file"), platform.files.ref("inner"), {}};
        (platform.*fail)(nth, code);

        const OSErr result = GetParam().run(arguments);
        if (!platform.failureReached())
        {
            EXPECT_EQ(result, noErr);
            EXPECT_EQ(platform.calls().size(), static_cast<std::size_t>(GetParam().callCount));
            return false;
        }
        SCOPED_TRACE(platform.failedCall());
        EXPECT_EQ(result, GetParam().ignored.contains(nth) ? noErr : code);
        EXPECT_EQ(platform.calls().size(), static_cast<std::size_t>(nth)) << "no call follows a failed one";
        if (result != noErr)
        {
            EXPECT_TRUE(arguments.out.untouched());
            EXPECT_TRUE(sameRecords(recordsOf(platform.files), before)) << "a refused change has left traces";
        }
        return true;
    }
};

TEST_P(CatalogFailures, EachCallFailingAloneEndsTheFunction)
{
    for (int nth = 1; failAt(nth, &Recorder::failCall); ++nth)
        ASSERT_LE(nth, GetParam().callCount);
}

TEST_P(CatalogFailures, AllCallsFailingFromOneOnEndTheFunction)
{
    for (int nth = 1; failAt(nth, &Recorder::failFromCall); ++nth)
        ASSERT_LE(nth, GetParam().callCount);
}

INSTANTIATE_TEST_SUITE_P(Rows, CatalogFailures, testing::ValuesIn(failureCases), rowName);

}   // namespace
