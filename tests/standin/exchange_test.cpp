// Exchanging two files: data, resource fork and modification date change places, everything else stays with the place.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

constexpr const char *journalName = "user.zerb.exchange";

// What a file consists of, as the tests below compare it.
struct Contents
{
    Bytes data, fork;
    UTCDateTime modified;
};

struct Dress
{
    OSType type, creator;
    UTCDateTime created, backedUp;
    TextEncoding hint;
    UInt16 mode;
};

Contents contentsOf(const FSRef &ref)
{
    return {forkOf(ref, false), forkOf(ref), infoOf(ref).contentModDate};
}

Dress dressOf(const FSRef &ref)
{
    FSCatalogInfo info = infoOf(ref);
    FSPermissionInfo permissions;
    std::memcpy(&permissions, info.permissions, sizeof permissions);
    return {fileInfo(info).fileType, fileInfo(info).fileCreator, info.createDate, info.backupDate, info.textEncodingHint, permissions.mode};
}

void expectContents(const FSRef &ref, const Contents &expected)
{
    Contents now = contentsOf(ref);
    EXPECT_EQ(now.data, expected.data);
    EXPECT_EQ(now.fork, expected.fork);
    EXPECT_EQ(now.modified, expected.modified);
}

void expectDress(const FSRef &ref, const Dress &expected)
{
    Dress now = dressOf(ref);
    EXPECT_EQ(now.type, expected.type);
    EXPECT_EQ(now.creator, expected.creator);
    EXPECT_EQ(now.created, expected.created);
    EXPECT_EQ(now.backedUp, expected.backedUp);
    EXPECT_EQ(+now.hint, +expected.hint);
    EXPECT_EQ(now.mode, expected.mode);
}

class Exchange : public DiskTest
{
protected:
    void SetUp() override
    {
        DiskTest::SetUp();
        if (IsSkipped())
            return;
        if (!offersExchange(refAt(folder().path())))
            GTEST_SKIP() << "files are not exchanged on this disk";
        mkdir((folder() / "one").c_str(), 0755);
        mkdir((folder() / "two").c_str(), 0755);
    }

    FSRef plainFile(const std::string &name)
    {
        writeFile(folder() / name, "data of " + name);
        timespec times[2] = {{1100000000, 0}, {1000000000 + static_cast<long>(name.size()), 0}};
        utimensat(AT_FDCWD, (folder() / name).c_str(), times, 0);
        return refAt(folder() / name);
    }

    FSRef dressedFile(const std::string &name, UInt16 number, bool withFork)
    {
        FSRef ref = plainFile(name);
        FSCatalogInfo info{};
        info.createDate = dateOfUnix(900000000 + number, number);
        info.backupDate = dateOfUnix(910000000 + number, number);
        info.textEncodingHint = number;
        EXPECT_EQ(setType(ref, code("AAAA") + number, code("BBBB") + number), noErr);
        EXPECT_EQ(change(ref, kFSCatInfoCreateDate | kFSCatInfoBackupDate | kFSCatInfoTextEncoding, info), noErr);
        if (withFork)
        {
            EXPECT_EQ(writeFork(ref, true, bytesOf("fork of " + name)), noErr);
        }
        return ref;
    }

    void expectExchanged(const FSRef &first, const FSRef &second, const std::string &firstName, const std::string &secondName)
    {
        Contents firstContents = contentsOf(first), secondContents = contentsOf(second);
        Dress firstDress = dressOf(first), secondDress = dressOf(second);
        ASSERT_EQ(FSExchangeObjects(&first, &second), noErr);
        for (const FSRef &ref : {first, refAt(folder() / firstName)})
        {
            expectContents(ref, secondContents);
            expectDress(ref, firstDress);
        }
        for (const FSRef &ref : {second, refAt(folder() / secondName)})
        {
            expectContents(ref, firstContents);
            expectDress(ref, secondDress);
        }
        EXPECT_EQ(attribute(folder() / firstName, journalName), std::nullopt);
        EXPECT_EQ(attribute(folder() / secondName, journalName), std::nullopt);
        EXPECT_EQ(pathOf(first), folder() / firstName);
        EXPECT_EQ(pathOf(second), folder() / secondName);
    }
};

TEST_P(Exchange, OfPlainFiles)
{
    FSRef first = plainFile("one/first"), second = plainFile("two/second");
    expectExchanged(first, second, "one/first", "two/second");
    EXPECT_FALSE(exists(folder() / "one/._first"));
    EXPECT_FALSE(exists(folder() / "two/._second"));
}

TEST_P(Exchange, OfDressedFilesWithoutForks)
{
    FSRef first = dressedFile("one/first", 1, false), second = dressedFile("one/second", 2, false);
    expectExchanged(first, second, "one/first", "one/second");
}

TEST_P(Exchange, OfFilesWithForks)
{
    FSRef first = dressedFile("one/first", 1, true), second = dressedFile("two/second", 2, true);
    expectExchanged(first, second, "one/first", "two/second");
}

TEST_P(Exchange, OfAFileWithAForkAndAPlainOneEitherWay)
{
    FSRef first = dressedFile("one/first", 1, true), second = plainFile("one/second");
    expectExchanged(first, second, "one/first", "one/second");
    expectExchanged(first, second, "one/first", "one/second");
    expectExchanged(second, first, "one/second", "one/first");
    EXPECT_EQ(namesIn(folder() / "one"), (std::vector<std::string>{"._second", "first", "second"}));
}

TEST_P(Exchange, TwiceLeavesAllAsItWas)
{
    FSRef first = dressedFile("one/first", 1, true), second = dressedFile("two/second", 2, true);
    Contents firstContents = contentsOf(first), secondContents = contentsOf(second);
    expectExchanged(first, second, "one/first", "two/second");
    expectExchanged(first, second, "one/first", "two/second");
    expectContents(first, firstContents);
    expectContents(second, secondContents);
}

// The Finder information that only a sidecar has belongs to the place too, and must not go with the fork.
TEST_P(Exchange, LeavesFinderInformationOfOthersSidecarsWithThePlace)
{
    FSRef first = plainFile("first"), second = plainFile("second");
    writeFile(folder() / "._first", plainSidecar(bytesOf("foreign fork"), bytesOf("TYPEMAKR" + std::string(24, '\0'))));
    expectExchanged(first, second, "first", "second");
    EXPECT_EQ(typeOf(first), code("TYPE"));
    EXPECT_EQ(typeOf(second), 0u);
    EXPECT_EQ(forkOf(second), bytesOf("foreign fork"));
}

TEST_P(Exchange, KeepsModeAndDateOfLastAccessWithThePlace)
{
    FSRef first = plainFile("first"), second = plainFile("second");
    chmod((folder() / "first").c_str(), 0640);
    chmod((folder() / "second").c_str(), 0400);
    UTCDateTime access = infoOf(first).accessDate;
    ASSERT_EQ(FSExchangeObjects(&first, &second), noErr);
    EXPECT_EQ(statxOf(folder() / "first").stx_mode & 0777u, 0640u);
    EXPECT_EQ(statxOf(folder() / "second").stx_mode & 0777u, 0400u);
    EXPECT_EQ(infoOf(first).accessDate, access);
}

// References that were made at different times of a file's life.
TEST_P(Exchange, ReferencesStayWithThePlaceWhereverItGoes)
{
    FSRef first = plainFile("one/first"), second = plainFile("one/second"), two = refAt(folder() / "two");
    const FSRef firstAtFirst = first, secondAtFirst = second;
    ASSERT_EQ(rename(first, "renamed"), noErr);
    ASSERT_EQ(FSExchangeObjects(&first, &secondAtFirst), noErr);
    EXPECT_EQ(pathOf(firstAtFirst), folder() / "one/renamed");
    EXPECT_EQ(pathOf(secondAtFirst), folder() / "one/second");

    FSRef firstLater = refAt(folder() / "one/renamed"), secondLater = refAt(folder() / "one/second");
    ASSERT_EQ(move(firstLater, two), noErr);
    ASSERT_EQ(rename(secondLater, "other"), noErr);
    for (const FSRef &ref : {firstAtFirst, first, firstLater})
        EXPECT_EQ(pathOf(ref), folder() / "two/renamed");
    for (const FSRef &ref : {secondAtFirst, second, secondLater})
        EXPECT_EQ(pathOf(ref), folder() / "one/other");
    EXPECT_EQ(readFile(folder() / "two/renamed"), bytesOf("data of one/second"));

    ASSERT_EQ(FSExchangeObjects(&firstAtFirst, &secondLater), noErr);
    for (const FSRef &ref : {firstAtFirst, first, firstLater})
        EXPECT_EQ(pathOf(ref), folder() / "two/renamed");
    EXPECT_EQ(readFile(folder() / "two/renamed"), bytesOf("data of one/first"));
    ASSERT_EQ(FSDeleteObject(&secondAtFirst), noErr);
    EXPECT_EQ(checkRef(secondLater), fnfErr);
    EXPECT_EQ(checkRef(firstAtFirst), noErr);
}

// How an application saves: a new file is written, changes places with the old one, and goes.
TEST_P(Exchange, ManySavesLeaveTheDocumentsReference)
{
    FSRef document = dressedFile("document", 7, true);
    Dress dress = dressOf(document);
    for (int save = 0; save < 300; ++save)
    {
        writeFile(folder() / "new", "text " + std::to_string(save));
        FSRef replacement = refAt(folder() / "new");
        ASSERT_EQ(FSExchangeObjects(&replacement, &document), noErr) << save;
        ASSERT_EQ(FSDeleteObject(&replacement), noErr) << save;
        ASSERT_FALSE(exists(folder() / "new"));
    }
    EXPECT_EQ(forkOf(document, false), bytesOf("text 299"));
    expectDress(document, dress);
}

TEST_P(Exchange, AnOpenDataForkGoesOnWithItsFile)
{
    FSRef first = plainFile("first"), second = plainFile("second");
    SInt16 fork = 0;
    ASSERT_EQ(openFork(first, false, fsRdWrPerm, fork), noErr);
    ASSERT_EQ(FSExchangeObjects(&first, &second), noErr);
    ByteCount written = 0;
    EXPECT_EQ(FSWriteFork(fork, fsFromStart, 0, 4, "DATA", &written), noErr);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    EXPECT_EQ(forkOf(second, false), bytesOf("DATA of first"));
}

TEST_P(Exchange, AnOpenResourceForkRefusesIt)
{
    FSRef first = dressedFile("first", 1, true), second = plainFile("second");
    SInt16 fork = 0;
    ASSERT_EQ(openFork(first, true, fsRdPerm, fork), noErr);
    EXPECT_EQ(FSExchangeObjects(&second, &first), fBsyErr);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    EXPECT_EQ(FSExchangeObjects(&second, &first), noErr);
}

TEST_P(Exchange, IsRefusedForWhatIsNoOrdinaryFile)
{
    plainFile("file");
    FSRef inner = refAt(folder() / "one");
    ASSERT_EQ(link((folder() / "file").c_str(), (folder() / "other name").c_str()), 0);
    FSRef other = plainFile("other"), twoNames = refAt(folder() / "other name");
    ASSERT_EQ(symlink("other", (folder() / "link").c_str()), 0);
    FSRef symbolic = childOf(refAt(folder().path()), "link");
    std::string before = pictureOf(folder().path());
    EXPECT_EQ(FSExchangeObjects(&inner, &other), notAFileErr);
    EXPECT_EQ(FSExchangeObjects(&other, &inner), notAFileErr);
    EXPECT_EQ(FSExchangeObjects(&twoNames, &other), paramErr) << "its other name would change too";
    EXPECT_EQ(FSExchangeObjects(&other, &symbolic), paramErr);
    EXPECT_EQ(FSExchangeObjects(&other, &other), noErr) << "nothing to do";
    EXPECT_EQ(pictureOf(folder().path()), before);
}

TEST_P(Exchange, IsRefusedOnALockedVolume)
{
    plainFile("first");
    FSRef second = plainFile("second");
    FSVolumeRefNum volume = 0;
    ASSERT_EQ(standin::addDirectoryVolume("locked", folder().path(), {.locked = true}, &volume), noErr);
    FSRef root{};
    ASSERT_EQ(FSGetVolumeInfo(volume, 0, nullptr, kFSVolInfoNone, nullptr, nullptr, &root), noErr);
    FSRef lockedFirst = childOf(root, "first"), lockedSecond = childOf(root, "second");
    EXPECT_EQ(FSExchangeObjects(&lockedFirst, &lockedSecond), vLckdErr);
    EXPECT_EQ(FSExchangeObjects(&lockedFirst, &second), diffVolErr);
    EXPECT_EQ(standin::removeDirectoryVolume(volume), noErr);
}

TEST_P(Exchange, IsNotOfferedWhereTheVolumeSaysSo)
{
    plainFile("first");
    plainFile("second");
    FSVolumeRefNum volume = 0;
    ASSERT_EQ(standin::addDirectoryVolume("without", folder().path(), {.exchangeOffered = false}, &volume), noErr);
    FSRef root{};
    ASSERT_EQ(FSGetVolumeInfo(volume, 0, nullptr, kFSVolInfoNone, nullptr, nullptr, &root), noErr);
    FSRef first = childOf(root, "first"), second = childOf(root, "second");
    EXPECT_FALSE(offersExchange(root));
    EXPECT_EQ(FSExchangeObjects(&first, &second), paramErr);
    EXPECT_EQ(standin::removeDirectoryVolume(volume), noErr);
}

// --- a journal that something else left or made ----------------------------------------------------------------------------------------------

TEST_P(Exchange, AJournalThatIsRubbishIsPassedOverAndGoes)
{
    FSRef file = dressedFile("file", 3, false);
    Dress dress = dressOf(file);
    for (std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{67}, std::size_t{80}, std::size_t{200}})
    {
        setAttribute(folder() / "file", journalName, Bytes(size, 'Z'));
        expectDress(file, dress);
        FSCatalogInfo info{};
        info.textEncodingHint = 3;
        EXPECT_EQ(change(file, kFSCatInfoTextEncoding, info), noErr);
        expectDress(file, dress);
    }
}

ON_EVERY_DISK(Exchange);

// Elsewhere the call says that it is not there.
class NoExchange : public DiskTest
{
};

TEST_P(NoExchange, IsToldByTheCallItself)
{
    writeFile(folder() / "first", "first");
    writeFile(folder() / "second", "second");
    FSRef first = refAt(folder() / "first"), second = refAt(folder() / "second");
    OSErr expected = offersExchange(first) ? noErr : paramErr;
    EXPECT_EQ(FSExchangeObjects(&first, &second), expected);
    EXPECT_EQ(readFile(folder() / "first"), bytesOf(expected == noErr ? "second" : "first"));
}

ON_EVERY_DISK(NoExchange);

}   // namespace
