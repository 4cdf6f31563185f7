// Copies of files that come from elsewhere: the samples of tests/data, each as a file's bytes and as its resource fork.
#include "tests/data/samples.h"
#include "tests/standin/copies.h"

#include <sys/stat.h>

namespace
{

using namespace support;

class SampleCopies : public DiskTest
{
};

TEST_P(SampleCopies, HoldEveryByteInBothForks)
{
    mkdir((folder() / "copies").c_str(), 0755);
    for (const char *name : {"macos-attributes.adouble", "netatalk3-picture.adouble", "strings.rsrc", "textfile.macbin"})
    {
        SCOPED_TRACE(name);
        const Bytes sample = readSample(name);
        ASSERT_FALSE(sample.empty());
        writeFile(folder() / name, sample);
        FSRef ref = refAt(folder() / name);
        ASSERT_EQ(writeFork(ref, true, sample), noErr);
        ASSERT_EQ(copyFile(ref, refAt(folder() / "copies")), noErr);
        const std::string copy = folder() / ("copies/" + std::string(name));
        EXPECT_EQ(readFile(copy), sample);
        EXPECT_EQ(forkOf(refAt(copy)), sample);
        EXPECT_EQ(readFile(folder() / ("copies/._" + std::string(name))), readFile(folder() / ("._" + std::string(name))));
    }
}

ON_EVERY_DISK(SampleCopies);

}   // namespace
