// Programs that know the sidecar format from elsewhere recognise ours.
#include "tests/standin/copies.h"
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <sys/stat.h>

namespace
{

using namespace support;

class Archivers : public DiskTest
{
protected:
    // A file with type, creator and fork of ours, on any disk.
    FSRef forkedFile(const std::string &name, const Bytes &fork)
    {
        writeFile(folder() / name, "the data fork");
        FSRef ref = refAt(folder() / name);
        EXPECT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
        EXPECT_EQ(writeFork(ref, true, fork), noErr);
        return ref;
    }

    // Of the archive, which has a file `document` with this fork. Told to show forks, unar writes the one that it has read as a sidecar of its own.
    void expectUnpacked(const Bytes &fork)
    {
        const std::string archive = folder() / "archive.tar", target = folder() / "unpacked";
        std::string listing = run({"lsar", "-l", archive}).output;
        EXPECT_NE(listing.find("document"), std::string::npos) << listing;
        mkdir(target.c_str(), 0755);
        const Ended unpacked = run({"unar", "-quiet", "-no-directory", "-forks", "hidden", "-output-directory", target, archive});
        ASSERT_EQ(unpacked.status, 0) << unpacked.output;
        EXPECT_EQ(readFile(target + "/document"), bytesOf("the data fork"));
        EXPECT_EQ(forkOf(refAt(target + "/document")), fork);
    }
};

TEST_P(Archivers, AreToldTheFormatByItsFirstBytes)
{
    if (!programExists("file"))
        GTEST_SKIP() << "no program file on this machine";
    forkedFile("document", Bytes(300, 1));
    std::string said = run({"file", "--brief", folder() / "._document"}).output;
    EXPECT_NE(said.find("AppleDouble"), std::string::npos) << said;
}

TEST_P(Archivers, TheLockAlonesSidecarIsOneToo)
{
    if (!programExists("file"))
        GTEST_SKIP() << "no program file on this machine";
    writeFile(folder() / "document");
    FSRef ref = refAt(folder() / "document");
    ASSERT_EQ(setLock(ref, true), noErr);
    std::string said = run({"file", "--brief", folder() / "._document"}).output;
    EXPECT_NE(said.find("AppleDouble"), std::string::npos) << said;
    ASSERT_EQ(setLock(ref, false), noErr);
}

TEST_P(Archivers, APackedFolderKeepsTheForkForThem)
{
    if (!programExists("lsar") || !programExists("unar") || !programExists("tar"))
        GTEST_SKIP() << "no lsar, unar or tar on this machine";
    Bytes fork = bytesOf("what the resource fork holds");
    forkedFile("document", fork);
    // The order of macOS's own archives: the sidecar before its file.
    Ended packed = run({"tar", "-cf", folder() / "archive.tar", "-C", folder().path(), "._document", "document"});
    ASSERT_EQ(packed.status, 0) << packed.output;
    expectUnpacked(fork);
}

TEST_P(Archivers, ReadTheForkOfACopy)
{
    if (!programExists("lsar") || !programExists("unar") || !programExists("bsdtar"))
        GTEST_SKIP() << "no lsar, unar or bsdtar on this machine";
    const Bytes fork = patternBytes(70000, 3);
    const FSRef source = forkedFile("original", fork);
    ASSERT_EQ(copyFile(source, refAt(folder().path()), "document"), noErr);
    Ended packed = run({"bsdtar", "-cf", folder() / "archive.tar", "-C", folder().path(), "._document", "document"});
    ASSERT_EQ(packed.status, 0) << packed.output;

    // Both take the two entries for one file.
    EXPECT_EQ(run({"bsdtar", "--options", "mac-ext", "-tf", folder() / "archive.tar"}).output, "document\n");
    expectUnpacked(fork);
}

ON_EVERY_DISK(Archivers);

}   // namespace
