// The resources of files that other systems made: each as README.md of tests/data has it.
#include "tests/data/samples.h"
#include "tests/standin/resource_bytes.h"

namespace
{

using namespace support;

struct Row
{
    OSType type;
    SInt16 id;
    SInt16 attributes;
    const char *name;
    long size;
};

const Row stringRows[] = {
    {code("STR "), 128, 0x00, "", 39},
    {code("STR "), 129, 0x00, "The Name", 40},
    {code("STR "), 130, resProtected | resPreload, "", 45},
    {code("STR "), 131, resSysHeap, "The Name with Attributes", 42},
};
const Row pictureRows[] = {
    {code("ICN#"), -16455, 0, "", 256}, {code("PICT"), 29876, 0, "", 142},   {code("STR "), -16396, 0, "", 17},
    {code("icl4"), -16455, 0, "", 512}, {code("icl8"), -16455, 0, "", 1024}, {code("icns"), -16455, 0, "", 41531},
    {code("ics#"), -16455, 0, "", 64},  {code("ics4"), -16455, 0, "", 128},  {code("ics8"), -16455, 0, "", 256},
    {code("pnot"), 0, 0, "", 34},       {code("vers"), 2, 0, "", 35},
};
const Row textRows[] = {{code("MPSR"), 1005, 0, "", 72}, {code("BBST"), 128, 0, "", 1048}};

std::vector<Row> rowsOfCurrentFile()
{
    static std::vector<std::string> names;
    std::vector<Row> rows;
    for (SInt16 typeIndex = 1; typeIndex <= Count1Types(); ++typeIndex)
    {
        ResType type = 0;
        Get1IndType(&type, typeIndex);
        for (SInt16 index = 1; index <= Count1Resources(type); ++index)
        {
            const Handle handle = Get1IndResource(type, index);
            EXPECT_EQ(ResError(), noErr);
            Row row{};
            Str255 name;
            GetResInfo(handle, &row.id, &row.type, name);
            row.attributes = GetResAttrs(handle);
            row.size = GetResourceSizeOnDisk(handle);
            EXPECT_EQ(GetHandleSize(handle), row.size);
            names.emplace_back(reinterpret_cast<char *>(name) + 1, name[0]);
            row.name = nullptr;
            rows.push_back(row);
        }
    }
    for (std::size_t index = 0; index < rows.size(); ++index)
        rows[index].name = names[names.size() - rows.size() + index].c_str();
    return rows;
}

template <std::size_t count>
void expectRows(const FSRef &file, const Row (&expected)[count])
{
    OpenResources open(file);
    ASSERT_EQ(ResError(), noErr);
    const std::vector<Row> rows = rowsOfCurrentFile();
    ASSERT_EQ(rows.size(), count);
    for (std::size_t index = 0; index < count; ++index)
    {
        SCOPED_TRACE(index);
        EXPECT_EQ(rows[index].type, expected[index].type);
        EXPECT_EQ(rows[index].id, expected[index].id);
        EXPECT_EQ(rows[index].attributes, expected[index].attributes);
        EXPECT_STREQ(rows[index].name, expected[index].name);
        EXPECT_EQ(rows[index].size, expected[index].size);
    }
}

TEST(ResourceSamples, ABareForkIsReadWhereverItLies)
{
    TemporaryFolder folder;
    expectRows(fileWithData(folder, "data", readSample("strings.rsrc")), stringRows);
    expectRows(fileWithFork(folder, "fork", readSample("strings.rsrc")), stringRows);
}

TEST(ResourceSamples, TheStringsAreThoseOfTheirAuthor)
{
    TemporaryFolder folder;
    OpenResources open(fileWithData(folder, "data", readSample("strings.rsrc")));
    EXPECT_EQ(contentOf(GetResource(code("STR "), 128)), "\x26The String, without name or attributes");
    EXPECT_EQ(contentOf(Get1NamedResource(code("STR "), reinterpret_cast<ConstStr255Param>("\x08the NAME"))),
              "\x27The String, with name and no attributes");
}

TEST(ResourceSamples, ASidecarOfAFileServerIsReadAsFileAndAsFork)
{
    TemporaryFolder folder;
    const Bytes sidecar = readSample("netatalk3-picture.adouble");
    expectRows(fileWithData(folder, "lonely.adouble", sidecar), pictureRows);
    writeFile(folder / "._Picture", sidecar);
    expectRows(fileWithData(folder, "Picture", {}), pictureRows);
}

TEST(ResourceSamples, ASidecarWithoutAForkHasNoResources)
{
    TemporaryFolder folder;
    OpenResources open(fileWithData(folder, "file", readSample("macos-attributes.adouble")));
    EXPECT_EQ(open.number(), -1);
    EXPECT_EQ(ResError(), eofErr);
}

TEST(ResourceSamples, MacBinaryIsReadAsItIs)
{
    TemporaryFolder folder;
    expectRows(fileWithData(folder, "Text File.bin", readSample("textfile.macbin")), textRows);
}

}   // namespace
