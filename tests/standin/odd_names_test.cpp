// Every name that Linux allows is reached by reference, by FSSpec, by name and by path, and comes back to the same bytes.
#include "tests/standin/test_volume.h"

#include <algorithm>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

class OddNames : public DiskTest
{
protected:
    FSRef folderRef() { return refAt(folder().path()); }

    // Each file holds its own name, so that an open shows which file was reached.
    void make(const std::string &name) { writeFile(folder() / name, name); }
    void expectReachable(const std::string &name);
    void expectAllListed(const std::vector<std::string> &names);
};

std::string printable(const std::string &name)
{
    return testing::PrintToString(name.size() > 40 ? name.substr(0, 40) + "…" : name);
}

void OddNames::expectReachable(const std::string &name)
{
    SCOPED_TRACE(printable(name));
    FSRef ref = refAt(folder() / name), bySpec{}, byName{};
    ASSERT_EQ(forkOf(ref, false), bytesOf(name));
    EXPECT_EQ(pathOf(ref), folder() / name);

    FSSpec spec{};
    HFSUniStr255 unicode{};
    FSRef parent{};
    ASSERT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, &unicode, &spec, &parent), noErr);
    EXPECT_LE(spec.name[0], 31);
    EXPECT_GE(spec.name[0], 1);
    ASSERT_EQ(findSpec(spec, bySpec), noErr) << "short form " << printable(std::string(spec.name + 1, spec.name + 1 + spec.name[0]));
    EXPECT_EQ(forkOf(bySpec, false), bytesOf(name));
    ASSERT_EQ(findChild(parent, std::vector<UniChar>(unicode.unicode, unicode.unicode + unicode.length), byName), noErr);
    EXPECT_EQ(forkOf(byName, false), bytesOf(name));
    EXPECT_EQ(pathOf(byName), folder() / name);
}

// A listing shows each once, under the name that the object itself gives.
void OddNames::expectAllListed(const std::vector<std::string> &names)
{
    FSRef parent = folderRef();
    FSIterator iterator = nullptr;
    ASSERT_EQ(FSOpenIterator(&parent, kFSIterateFlat, &iterator), noErr);
    std::vector<std::string> found;
    OSErr result = noErr;
    while (result == noErr)
    {
        FSRef refs[16];
        HFSUniStr255 listed[16];
        ItemCount count = 0;
        result = FSGetCatalogInfoBulk(iterator, 16, &count, nullptr, kFSCatInfoNone, nullptr, refs, nullptr, listed);
        for (ItemCount i = 0; i < count; ++i)
        {
            EXPECT_EQ(nameOf(refs[i]), wide(listed[i]));
            found.push_back(pathOf(refs[i]).substr(folder().path().size() + 1));
        }
    }
    EXPECT_EQ(result, errFSNoMoreItems);
    EXPECT_EQ(FSCloseIterator(iterator), noErr);
    std::vector<std::string> expected = names;
    std::sort(expected.begin(), expected.end());
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, expected);
}

TEST_P(OddNames, EverySingleByte)
{
    std::vector<std::string> names;
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '/' && byte != '.')
            names.push_back(std::string(1, static_cast<char>(byte)));
    for (const std::string &name : names)
        make(name);
    for (const std::string &name : names)
        expectReachable(name);
    expectAllListed(names);
}

TEST_P(OddNames, EveryByteInsideAName)
{
    std::vector<std::string> names;
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '/')
            names.push_back("a" + std::string(1, static_cast<char>(byte)) + "z");
    for (const std::string &name : names)
        make(name);
    for (const std::string &name : names)
        expectReachable(name);
}

const std::vector<std::string> &oddNames()
{
    static const std::vector<std::string> names{
        "...",
        "..a",
        ".hidden",
        "-rf",
        "--",
        " ",
        " leading and trailing ",
        "two\nlines\r",
        "\t",
        "a:b:c",
        ":",
        "back\\slash",
        "name#1A2B3C.txt",   // looks like a short form, but is one of its own
        "name#",
        "._",          // no name behind it: a file
        "._lonely",    // a sidecar without its file is shown as a file
        "\xC3\xA9",    // é composed
        "e\xCC\x81",   // é decomposed, beside it
        "\xC3",        // UTF-8 that breaks off
        "\x80\x80",
        "\xFF\xFE",
        "\xC0\xAF",   // overlong
        "\xE0\x80\x80",
        "\xED\xA0\x80",               // an encoded surrogate
        "\xED\xA0\x80\xED\xB0\x80",   // two that would join
        "\xED\xB2\x80",               // one of those that stand for bytes
        "\xED\xBF\xBF",
        "\xF4\x90\x80\x80",   // past the last character
        "\xF0\x9F\x98\x80",   // beyond the first plane
        "\xEF\xBB\xBF"
        "mark",
        "\xE2\x89\xA0",           // ≠, which the disk's decomposition leaves whole
        "=\xCC\xB8",              // … and its canonical decomposition
        "\xEF\xA4\x80",           // a compatibility ideograph
        "\xE1\xBA\x9B\xCC\xA3",   // marks in another order than composed
        "Schr\xC3\xB6"
        "dinger.\xE7\x8C\xAB",
    };
    return names;
}

TEST_P(OddNames, OddOnes)
{
    folder().expectOrphan("._lonely");
    for (const std::string &name : oddNames())
        make(name);
    for (const std::string &name : oddNames())
        expectReachable(name);
    expectAllListed(oddNames());
}

TEST_P(OddNames, LongOnes)
{
    std::vector<std::string> names;
    for (std::size_t length : {30, 31, 32, 33, 63, 64, 252, 253, 254, 255})
    {
        names.push_back(std::string(length, 'n'));
        names.push_back(std::string(length, '\xFE'));
        names.push_back(std::string(length - 4, 'm') + ".txt");
    }
    std::string twoByteLetters;
    while (twoByteLetters.size() < 254)
        twoByteLetters += "\xC3\xA9";
    names.push_back(twoByteLetters);
    for (const std::string &name : names)
        make(name);
    for (const std::string &name : names)
        expectReachable(name);
    expectAllListed(names);
}

TEST_P(OddNames, LongOnesThatBeginAlike)
{
    std::vector<std::string> names;
    for (int i = 0; i < 50; ++i)
        names.push_back("The same beginning, and then quite some more of it " + std::to_string(i) + ".document");
    for (const std::string &name : names)
        make(name);
    std::map<std::string, std::string> shortForms;
    for (const std::string &name : names)
    {
        expectReachable(name);
        FSSpec spec = specOf(refAt(folder() / name));
        std::string shortForm(spec.name + 1, spec.name + 1 + spec.name[0]);
        EXPECT_TRUE(shortForms.emplace(shortForm, name).second)
            << shortForm << " stands for " << name << " and for " << shortForms[shortForm];
    }
}

TEST_P(OddNames, OddFoldersAreWalkedThrough)
{
    folder().expectOrphan("._lonely");
    for (const std::string &name : oddNames())
    {
        SCOPED_TRACE(printable(name));
        mkdir((folder() / name).c_str(), 0755);
        writeFile(folder() / (name + "/file"), name);
        FSRef file = refAt(folder() / (name + "/file"));
        FSRef byID{};
        FSSpec spec = specOf(file);   // names its folder by number alone
        ASSERT_EQ(findSpec(spec, byID), noErr);
        EXPECT_EQ(pathOf(byID), folder() / (name + "/file"));
    }
}

TEST_P(OddNames, MetadataFollowsOddNames)
{
    for (std::string name : {"\xFF\xFE", "a:b", "two\nlines", "-rf", "e\xCC\x81"})
    {
        SCOPED_TRACE(printable(name));
        make(name);
        FSRef ref = refAt(folder() / name);
        ASSERT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
        ASSERT_EQ(writeFork(ref, true, {1, 2, 3}), noErr);
        EXPECT_EQ(typeOf(refAt(folder() / name)), code("TEXT"));
        EXPECT_EQ(forkOf(refAt(folder() / name)), (Bytes{1, 2, 3}));
        EXPECT_TRUE(exists(folder() / ("._" + name)));
        ASSERT_EQ(FSDeleteObject(&ref), noErr);
    }
    EXPECT_TRUE(namesIn(folder().path()).empty());
}

TEST_P(OddNames, ColonsAndSlashesChangePlaces)
{
    make("a:b");
    EXPECT_EQ(nameOf(refAt(folder() / "a:b")), u"a/b");
    ASSERT_EQ(makeFile(folderRef(), "c/d"), noErr);
    EXPECT_TRUE(exists(folder() / "c:d"));
    EXPECT_EQ(makeFile(folderRef(), "e:f"), bdNamErr);
    FSRef ref{};
    EXPECT_EQ(findChild(folderRef(), units("a:b"), ref), bdNamErr);
    EXPECT_EQ(findChild(folderRef(), {'a', 0, 'b'}, ref), bdNamErr);
}

TEST_P(OddNames, NewNamesAreComposedAndFoundInEitherForm)
{
    ASSERT_EQ(makeFile(folderRef(), "cafe\xCC\x81"), noErr);
    EXPECT_EQ(namesIn(folder().path()), std::vector<std::string>{"caf\xC3\xA9"});
    EXPECT_EQ(makeFile(folderRef(), "caf\xC3\xA9"), dupFNErr);
    EXPECT_EQ(pathOf(childOf(folderRef(), "cafe\xCC\x81")), folder() / "caf\xC3\xA9");

    make("u\xCC\x88"
         "ber");   // another program stored this one decomposed
    EXPECT_EQ(pathOf(childOf(folderRef(), "\xC3\xBC"
                                          "ber")),
              folder() / "u\xCC\x88"
                         "ber");
    make("\xC3\xBC"
         "ber");
    EXPECT_EQ(pathOf(childOf(folderRef(), "\xC3\xBC"
                                          "ber")),
              folder() / "\xC3\xBC"
                         "ber");
    EXPECT_EQ(pathOf(childOf(folderRef(), "u\xCC\x88"
                                          "ber")),
              folder() / "u\xCC\x88"
                         "ber");
}

TEST_P(OddNames, NamesThatCannotBeAreRefused)
{
    FSRef parent = folderRef(), ref{};
    std::vector<UniChar> tooLong(256, 'n');
    EXPECT_EQ(FSCreateFileUnicode(&parent, 256, tooLong.data(), kFSCatInfoNone, nullptr, &ref, nullptr), errFSNameTooLong);
    std::vector<UniChar> tooLongOnDisk(128, 0xE9);
    EXPECT_EQ(FSCreateFileUnicode(&parent, 128, tooLongOnDisk.data(), kFSCatInfoNone, nullptr, &ref, nullptr), errFSNameTooLong);
    EXPECT_EQ(FSCreateFileUnicode(&parent, 0, tooLong.data(), kFSCatInfoNone, nullptr, &ref, nullptr), errFSMissingName);
    EXPECT_EQ(makeFile(parent, "."), bdNamErr);
    EXPECT_EQ(makeFile(parent, ".."), bdNamErr);
    EXPECT_EQ(makeFolder(parent, ".."), bdNamErr);
    EXPECT_TRUE(namesIn(folder().path()).empty());
}

ON_EVERY_DISK(OddNames);

}   // namespace
