// `zerb icon` and `zerb icons`: pictures of icons, their labels and whole files, and what is said where there is none.
#include "tests/data/samples.h"
#include "tests/standin/icon_files.h"
#include "tests/standin/pictures.h"
#include "tests/whole/host_program.h"

#include "host/icon_words.h"
#include "tests/whole/host_complaints.h"

#include <gmock/gmock.h>

namespace
{

using host_tests::complaintOf;
using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::Words;
using nlohmann::json;
using namespace support;
using standin::Pixel;
using testing::HasSubstr;

constexpr Pixel black = 0xFF000000, white = 0xFFFFFFFF;

class HostIcons : public HostTest
{
protected:
    void makeFork(const std::string &name, const std::vector<TestResource> &resources) const
    {
        writeFile(path(name), resourceFork(resources));
    }

    // Icons 128 (all members), 129 (large, labelled by a string), -7 (small alone), 300 (damaged and 4 bits); arrows 128.
    void makeIcons(const std::string &name = "Icons.rsrc") const
    {
        std::vector<TestResource> all = pageFamily(128, "A page");
        for (TestResource &member : pageFamily(129, "Not this", {code("ICN#"), code("icl8")}))
            all.push_back(member);
        all.push_back({code("STR "), 129, bytesOf("\x0DWritten today")});
        all.push_back(pageMember(code("ics8"), -7));
        all.push_back(pageMember(code("icl4"), 300));
        all.push_back(pageMember(code("ICN#"), 300));
        all.back().bytes.resize(100);
        all.push_back(arrowList(128, 8));
        makeFork(name, all);
    }

    Picture drawn(Words words, const std::string &picture = "icon.png") const
    {
        words.insert(words.end() - (words.size() > 2 && words[words.size() - 2] == "--" ? 2 : 0), {"-o", picture, "--replace"});
        zerbWell(words);
        return readPicture(path(picture));
    }

    static long inkOf(const Picture &picture)
    {
        return std::count_if(picture.pixels.begin(), picture.pixels.end(), [](Pixel pixel) { return pixel != white; });
    }
};

// ---------------------------------------------------------------------------------------------------------------------
// One icon

TEST_F(HostIcons, ARealIconIsDrawnFromASidecar)
{
    writeFile(path("real"), readSample("netatalk3-picture.adouble"));
    const Picture large = drawn({"icon", "real", "--", "-16455"}), small = drawn({"icon", "--size", "small", "real", "-16455"});
    EXPECT_EQ(large.width, 32);
    EXPECT_EQ(large.height, 32);
    EXPECT_EQ(small.width, 16);
    EXPECT_EQ(small.height, 16);
    EXPECT_TRUE(looksLike(large, "icon_real_large"));
    EXPECT_TRUE(looksLike(small, "icon_real_small"));
    EXPECT_EQ(inkOf(large), 14);
    EXPECT_EQ(inkOf(small), 14);
}

TEST_F(HostIcons, AnIconOfAResourceForkIsDrawn)
{
    makeFile("Tool");
    const std::string fork(reinterpret_cast<const char *>(resourceFork(pageFamily(128)).data()), resourceFork(pageFamily(128)).size());
    makeFile("fork", fork);
    zerbWell({"forks", "import", "--resource", "Tool", "--from", path("fork")});
    EXPECT_GT(inkOf(drawn({"icon", "Tool", "128"})), 100);
}

TEST_F(HostIcons, LabelsStandBesideAndBelow)
{
    makeIcons();
    EXPECT_TRUE(looksLike(drawn({"icon", "Icons.rsrc", "128"}), "icon_button"));
    EXPECT_TRUE(looksLike(drawn({"icon", "--label", "beside", "Icons.rsrc", "128"}), "icon_button_beside"));
    EXPECT_TRUE(looksLike(drawn({"icon", "--label", "below", "Icons.rsrc", "129"}), "icon_button_below"));
    EXPECT_TRUE(looksLike(drawn({"icon", "--label", "below", "--transform", "disabled", "Icons.rsrc", "129"}), "icon_button_disabled"));
}

// Nothing of a label is cut off, whatever its width: the picture's edges beside the text stay empty.
TEST_F(HostIcons, PicturesAreWideEnoughForTheirLabels)
{
    for (const std::string text : {"i", "ii", "iii", "WWWWWWW", "WWWWWWWi", "A rather long label, with a comma"})
    {
        makeFork("Labels.rsrc", {plainMember(code("icl8"), 1, 0), {code("STR "), 1, bytesOf(static_cast<char>(text.size()) + text)}});
        for (const char *placement : {"beside", "below"})
        {
            const Picture tight = drawn({"icon", "--label", placement, "Labels.rsrc", "1"});
            ASSERT_GT(tight.width, 0);
            EXPECT_GT(inkOf(tight), 3) << text << placement;
            for (int row = 0; row < tight.height; ++row)
                EXPECT_EQ(tight.pixels[static_cast<std::size_t>((row + 1) * tight.width - 1)], white) << text << placement << row;
        }
    }
}

TEST_F(HostIcons, ADamagedStringIsNoLabelToFallOver)
{
    makeFork("Short.rsrc", {plainMember(code("icl8"), 1, 255),
                            {code("STR "), 1, {}},
                            plainMember(code("icl8"), 2, 255),
                            {code("STR "), 2,
                             bytesOf("\xFF"
                                     "abc")}});
    EXPECT_EQ(drawn({"icon", "Short.rsrc", "1"}).width, 32);
    EXPECT_EQ(drawn({"icon", "Short.rsrc", "2"}).width, 32);
}

TEST_F(HostIcons, AListThatCannotBeReadIsTold)
{
    TestResource list = arrowList(5, 2);
    std::copy_n("\xA8\x9F\x65\x72", 4, list.bytes.begin());   // what compressed resources begin with
    list.attributes = 0x01;
    makeFork("Compressed.rsrc", {list, pageMember(code("icl8"), 5)});
    const Outcome outcome = zerb({"icon", "--sicn", "1", "-o", "x.png", "Compressed.rsrc", "5"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("reading list 5: badExtResource (-185)"));
    EXPECT_GT(inkOf(drawn({"icons", "Compressed.rsrc"})), 100) << "the sheet has the rest";
}

TEST_F(HostIcons, LooksAndBackgroundReachTheIcon)
{
    makeFork("Plain.rsrc", {plainMember(code("icl8"), 1, 0), plainMember(code("ics8"), 1, 0)});
    const auto first = [&](Words words) {
        words.insert(words.begin(), "icon");
        words.insert(words.end(), {"Plain.rsrc", "1"});
        return drawn(words).pixels[0];
    };
    EXPECT_EQ(first({}), white);
    EXPECT_EQ(first({"--transform", "none"}), white);
    EXPECT_EQ(first({"--transform", "selected"}), 0xFF7F7F7F);
    EXPECT_EQ(first({"--transform", "disabled", "--background", "0000ff"}), 0xFF7F7FFF);
    EXPECT_EQ(first({"--transform", "selected,disabled", "--background", "black"}), 0xFF3F3F3F);
    EXPECT_EQ(first({"--transform", "red,selected", "--size", "small"}), 0xFF771F17);
    EXPECT_EQ(first({"--transform", "open"}), 0xFF808080);
}

TEST_F(HostIcons, AnIconOfOneSizeIsStretchedOrPlaced)
{
    makeIcons();
    const Picture stretched = drawn({"icon", "Icons.rsrc", "-7"});
    const Picture placed = drawn({"icon", "--align", "bottom-right", "--background", "00FF00", "Icons.rsrc", "--", "-7"});
    EXPECT_EQ(stretched.width, 32);
    EXPECT_EQ(placed.pixels[0], 0xFF00FF00);
    EXPECT_EQ(placed.pixels[15 * 32 + 31], 0xFF00FF00);
    EXPECT_EQ(placed.pixels[31 * 32 + 19], black) << "the lower left corner of a page of 16 by 16";
    EXPECT_EQ(stretched.pixels[31 * 32 + 6], black);
}

TEST_F(HostIcons, PixelsMayBeSquaresOfSeveral)
{
    makeIcons();
    const Picture once = drawn({"icon", "Icons.rsrc", "128"}), thrice = drawn({"icon", "Icons.rsrc", "128", "--scale", "3"});
    ASSERT_EQ(thrice.width, 96);
    for (int y = 0; y < 96; ++y)
        for (int x = 0; x < 96; ++x)
            ASSERT_EQ(thrice.pixels[static_cast<std::size_t>(96 * y + x)], once.pixels[static_cast<std::size_t>(32 * (y / 3) + x / 3)]);
}

TEST_F(HostIcons, OneOfAListOfSmallIconsIsDrawn)
{
    makeIcons();
    EXPECT_TRUE(looksLike(drawn({"icon", "--sicn", "0", "Icons.rsrc", "128"}), "icon_sicn_up"));
    EXPECT_TRUE(looksLike(drawn({"icon", "--sicn", "7", "--background", "FFFF00", "Icons.rsrc", "128"}), "icon_sicn_up_left"));
}

// ---------------------------------------------------------------------------------------------------------------------
// What goes wrong

struct WrongCase
{
    const char *name;
    Words words;
    int status;
    std::vector<std::string> said;
};

void PrintTo(const WrongCase &row, std::ostream *stream)
{
    *stream << row.name;
}

class WrongIcons : public HostIcons, public testing::WithParamInterface<WrongCase>
{
};

TEST_P(WrongIcons, AreToldAndDrawNothing)
{
    makeIcons();
    makeFile("Text", "no resources at all, but more than a few bytes of text");
    makeFile("taken.png", "mine");
    makeFork("None.rsrc", {{code("STR "), 1, bytesOf("\x01x")}});
    const Outcome outcome = zerb(GetParam().words);
    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_EQ(outcome.output, "");
    for (const std::string &part : GetParam().said)
        EXPECT_THAT(outcome.errors, HasSubstr(part));
    EXPECT_FALSE(exists(path("x.png")));
    EXPECT_EQ(readFile(path("taken.png")), bytesOf("mine"));
}

const WrongCase wrongCases[] = {
    {"NoSuchIcon", {"icon", "Icons.rsrc", "77", "-o", "x.png"}, 1, {"icon 77: resNotFound (-192)", "its icons: -7, 128, 129 and 300"}},
    {"NoSmallMember", {"icon", "--size", "small", "Icons.rsrc", "129", "-o", "x.png"}, 1, {"small icon 129: resNotFound (-192)"}},
    {"NoIconAtAll", {"icon", "None.rsrc", "1", "-o", "x.png"}, 1, {"resNotFound", "its icons: none"}},
    {"NoSuchList", {"icon", "--sicn", "0", "Icons.rsrc", "129", "-o", "x.png"}, 1, {"resNotFound", "its lists of small icons: 128"}},
    {"PastTheList", {"icon", "--sicn", "8", "Icons.rsrc", "128", "-o", "x.png"}, 1, {"list 128 has 8 pictures"}},
    {"NoFile", {"icon", "Nothing", "128", "-o", "x.png"}, 1, {"Nothing: fnfErr (-43)"}},
    {"NoResourceFile", {"icon", "Text", "128", "-o", "x.png"}, 1, {"Text: opening its resources: mapReadErr (-199)"}},
    {"PictureIsThere", {"icon", "Icons.rsrc", "128", "-o", "taken.png"}, 1, {"taken.png: it is there already; --replace"}},
    {"NoFolderForIt", {"icon", "Icons.rsrc", "128", "-o", "none/x.png"}, 1, {"none/x.png: saving the picture: fnfErr (-43)"}},
    {"NoPictureNamed", {"icon", "Icons.rsrc", "128"}, 2, {"--output is required"}},
    {"NoNumber", {"icon", "Icons.rsrc", "first", "-o", "x.png"}, 2, {"an ID is a number"}},
    {"NumberTooLarge", {"icon", "Icons.rsrc", "32768", "-o", "x.png"}, 2, {"an ID is a number"}},
    {"UnknownLook", {"icon", "--transform", "bright", "Icons.rsrc", "128", "-o", "x.png"}, 2, {"there is no look \"bright\""}},
    {"TwoStates", {"icon", "--transform", "open,disabled", "Icons.rsrc", "128", "-o", "x.png"}, 2, {"one of disabled, offline and open"}},
    {"SmallWithLabel", {"icon", "--size", "small", "--label", "below", "Icons.rsrc", "128", "-o", "x.png"}, 2, {"has no label"}},
    {"ListWithLook", {"icon", "--sicn", "0", "--transform", "open", "Icons.rsrc", "128", "-o", "x.png"}, 2, {"--sicn"}},
    {"NoScale", {"icon", "--scale", "0", "Icons.rsrc", "128", "-o", "x.png"}, 2, {"--scale"}},
    {"NoColor", {"icon", "--background", "reddish", "Icons.rsrc", "128", "-o", "x.png"}, 2, {"a color is six hexadecimal digits"}},
    {"SheetWithoutIcons", {"icons", "None.rsrc", "-o", "x.png"}, 1, {"there is no icon among its resources"}},
    {"SheetOfNoResourceFile", {"icons", "Text", "-o", "x.png"}, 1, {"mapReadErr (-199)"}},
    {"SheetIsThere", {"icons", "Icons.rsrc", "-o", "taken.png"}, 1, {"--replace"}},
    {"SheetGoesNowhere", {"icons", "Icons.rsrc"}, 2, {"-o"}},
    {"SheetAndList", {"icons", "Icons.rsrc", "-o", "x.png", "--json"}, 2, {"--json"}},
    {"NoColumns", {"icons", "Icons.rsrc", "-o", "x.png", "--columns", "0"}, 2, {"at least one column"}},
};

INSTANTIATE_TEST_SUITE_P(OfTheHost, WrongIcons, testing::ValuesIn(wrongCases), [](const auto &row) { return row.param.name; });

TEST(IconWords, LooksAreSumsOfTheirParts)
{
    using host::transformFromText;
    EXPECT_EQ(transformFromText("none"), kTransformNone);
    EXPECT_EQ(transformFromText("disabled"), kTransformDisabled);
    EXPECT_EQ(transformFromText("selected,offline"), kTransformSelectedOffline);
    EXPECT_EQ(transformFromText("open,selected,orange"), kTransformSelectedOpen | kTransformLabel7);
    EXPECT_EQ(transformFromText("gray"), kTransformLabel1);
    EXPECT_THAT(complaintOf([] { transformFromText("red,blue"); }), HasSubstr("one label"));
    for (const char *typed : {"", "selected,", "none,open", "Selected", "0x4000"})
        EXPECT_THAT(complaintOf([=] { transformFromText(typed); }), HasSubstr("there is no look")) << typed;
}

TEST(IconWords, AlignmentsAndColours)
{
    EXPECT_EQ(host::alignmentFromText("none"), kAlignNone);
    EXPECT_EQ(host::alignmentFromText("center"), kAlignAbsoluteCenter);
    EXPECT_EQ(host::alignmentFromText("top-right"), kAlignTopRight);
    EXPECT_THAT(complaintOf([] { host::alignmentFromText("middle"); }), HasSubstr("bottom-right"));
    const RGBColor color = host::colorFromText("#12aBff"), gray = host::colorFromText("gray");
    EXPECT_EQ(color.red, 0x1212);
    EXPECT_EQ(color.green, 0xABAB);
    EXPECT_EQ(color.blue, 0xFFFF);
    EXPECT_EQ(gray.blue, 0x8080);
    for (const char *typed : {"", "#", "12345", "1234567", "0x1234", "12345g", "##1234"})
        EXPECT_THAT(complaintOf([=] { host::colorFromText(typed); }), HasSubstr("a color is")) << typed;
}

// ---------------------------------------------------------------------------------------------------------------------
// Whole files

TEST_F(HostIcons, ASheetShowsEveryIcon)
{
    makeIcons();
    EXPECT_TRUE(looksLike(drawn({"icons", "Icons.rsrc", "--columns", "3"}), "icon_sheet"));
}

TEST_F(HostIcons, AListTellsMembersAndNames)
{
    makeIcons();
    const json list = json::parse(zerbWell({"icons", "--json", "Icons.rsrc"}));
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0]["path"], "Icons.rsrc");
    const json &families = list[0]["families"];
    ASSERT_EQ(families.size(), 4u);
    EXPECT_EQ(families[0]["id"], -7);
    EXPECT_EQ(families[1]["id"], 128);
    EXPECT_EQ(families[1]["name"], "A page");
    EXPECT_EQ(families[1]["members"].size(), 6u);
    EXPECT_EQ(families[1]["members"][2], (json{{"type", "icl8"}, {"size", 1024}, {"drawable", true}}));
    EXPECT_EQ(families[3]["members"],
              (json{{{"type", "ICN#"}, {"size", 100}, {"drawable", false}}, {{"type", "icl4"}, {"size", 512}, {"drawable", true}}}));
    EXPECT_EQ(list[0]["small_icon_lists"], (json{{{"id", 128}, {"name", ""}, {"pictures", 8}}}));
}

TEST_F(HostIcons, AListOfAFileWithoutIconsIsEmpty)
{
    makeFork("None.rsrc", {{code("STR "), 1, bytesOf("\x01x")}});
    const json list = json::parse(zerbWell({"icons", "--json", "None.rsrc"}));
    EXPECT_TRUE(list[0]["families"].empty());
    EXPECT_TRUE(list[0]["small_icon_lists"].empty());
    const Outcome outcome = zerb({"icons", "--json", "Nothing"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(json::parse(outcome.output)[0]["error"]["symbol"], "fnfErr");
}

TEST_F(HostIcons, TheRealFileHasOneFamily)
{
    writeFile(path("real"), readSample("netatalk3-picture.adouble"));
    const json list = json::parse(zerbWell({"icons", "--json", "real"}));
    ASSERT_EQ(list[0]["families"].size(), 1u);
    EXPECT_EQ(list[0]["families"][0]["id"], -16455);
    EXPECT_EQ(list[0]["families"][0]["members"].size(), 6u);
    EXPECT_GT(inkOf(drawn({"icons", "real"})), 6 * 14) << "six members, and the ID";
}

TEST_F(HostIcons, HundredsOfFamiliesFitOnASheet)
{
    std::vector<TestResource> all;
    for (SInt16 id = 1; id <= 400; ++id)
        for (TestResource &member : pageFamily(id))
            all.push_back(std::move(member));
    makeFork("Many.rsrc", all);
    const Picture sheet = drawn({"icons", "Many.rsrc", "--columns", "20"});
    EXPECT_EQ(sheet.width, 20 * 116);
    EXPECT_GT(inkOf(sheet), 400 * 600);
    const Outcome tooHigh = zerb({"icons", "Many.rsrc", "-o", "high.png", "--columns", "1"});
    EXPECT_EQ(tooHigh.status, 1);
    EXPECT_THAT(tooHigh.errors, HasSubstr("--columns makes it wider"));
    EXPECT_FALSE(exists(path("high.png")));
}

}   // namespace
