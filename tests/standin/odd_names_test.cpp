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

struct MadeName
{
    std::u16string name;    // as it is asked for
    std::string diskName;   // as it is stored: composed
};

std::string repeated(const std::string &text, int count)
{
    std::string result;
    while (count-- > 0)
        result += text;
    return result;
}

const std::vector<MadeName> &namesToMake()
{
    static const std::vector<MadeName> names{
        {u"\u65E5\u672C\u8A9E \u304B\u3099", "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E \xE3\x81\x8C"},
        {u"\u041F\u0440\u0438\u0432\u0435\u0442 \u0438\u0306", "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82 \xD0\xB9"},
        {u"\u0395\u03BB\u03BB\u03AC\u03C2", "\xCE\x95\xCE\xBB\xCE\xBB\xCE\xAC\xCF\x82"},
        {u"\u1112\u1161\u11AB\uAE00", "\xED\x95\x9C\xEA\xB8\x80"},
        {u"\u4E2D\u6587 \U0001F600", "\xE4\xB8\xAD\xE6\x96\x87 \xF0\x9F\x98\x80"},
        {{u'a', 0xD83D, u'b'},
         "a\xED\xA0\xBD"
         "b"},
        {{u'a', 0xDC80}, "a\x80"},
        {u"re\u0301sum\u00E9", "r\xC3\xA9sum\xC3\xA9"},
        {std::u16string(31, u'n'), std::string(31, 'n')},
        {std::u16string(32, u'n'), std::string(32, 'n')},
        {std::u16string(31, u'\u00E9'), repeated("\xC3\xA9", 31)},
        {std::u16string(32, u'\u00E9'), repeated("\xC3\xA9", 32)},
        {std::u16string(255, u'x'), std::string(255, 'x')},
    };
    return names;
}

TEST_P(OddNames, ThatAreMadeAreFoundEveryWay)
{
    FSRef parent = folderRef();
    std::vector<std::string> diskNames;
    for (const MadeName &row : namesToMake())
    {
        SCOPED_TRACE(printable(row.diskName));
        const std::vector<UniChar> name(row.name.begin(), row.name.end());
        FSRef made{};
        ASSERT_EQ(
            FSCreateFileUnicode(&parent, static_cast<UniCharCount>(name.size()), name.data(), kFSCatInfoNone, nullptr, &made, nullptr),
            noErr);
        EXPECT_EQ(pathOf(made), folder() / row.diskName);
        make(row.diskName);
        EXPECT_EQ(forkOf(made, false), bytesOf(row.diskName));
        FSRef asAskedFor{};
        ASSERT_EQ(findChild(parent, name, asAskedFor), noErr);
        EXPECT_EQ(forkOf(asAskedFor, false), bytesOf(row.diskName));
        expectReachable(row.diskName);
        diskNames.push_back(row.diskName);
    }
    expectAllListed(diskNames);
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
