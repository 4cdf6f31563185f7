// The host's commands that convert names and locations: name and path.

#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::runHost;
using host_tests::Words;
using nlohmann::json;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// ---------------------------------------------------------------------------------------------------------------------
// name

struct NameCase
{
    const char *name;
    Words words;
    const char *output;
};

void PrintTo(const NameCase &row, std::ostream *stream)
{
    *stream << row.name;
}

class HostName : public testing::TestWithParam<NameCase>
{
};

TEST_P(HostName, IsConverted)
{
    Outcome outcome = runHost(GetParam().words);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, GetParam().output);
    EXPECT_EQ(outcome.errors, "");
}

const NameCase nameCases[] = {
    {"Ascii", {"name", "short", "Letter"}, "06 4C 65 74 74 65 72  Letter\n"},
    {"Several", {"name", "short", "a", "", "b/c"}, "01 61  a\n00  \n03 62 2F 63  b/c\n"},
    {"MacRomanByWord", {"name", "short", "--encoding", "roman", "Ä"}, "01 80  A\u0308\n"},
    {"JapaneseByWord", {"name", "short", "--encoding", "japanese", "\u65E5\u672C"}, "04 93 FA 96 7B  \u65E5\u672C\n"},
    {"CyrillicByNumber", {"name", "short", "--encoding", "0x7", "Дан"}, "03 84 E0 ED  Дан\n"},
    {"Volume",
     {"name", "short", "--volume", "123456789012345678901234567"},
     "1B 31 32 33 34 35 36 37 38 39 30 31 32 33 34 35 36 37 38 39 30 31 32 33 34 35 36 37  123456789012345678901234567\n"},
    {"EscapesWhatDisturbsATerminal", {"name", "short", "a\nb"}, "03 61 0A 62  a\\x0Ab\n"},
    {"FromBytes", {"name", "unicode", "06 4C 65 74 74 65 72"}, "004C 0065 0074 0074 0065 0072  Letter\n"},
    {"FromALiteral", {"name", "unicode", "--encoding", "cyrillic", "\"\\003\\204\\340\\355\""}, "0414 0430 043D  Дан\n"},
    {"FromGreek", {"name", "unicode", "--encoding", "greek", "01 A1"}, "0393  Γ\n"},
    {"FromNothing", {"name", "unicode", "00"}, "  \n"},
};

INSTANTIATE_TEST_SUITE_P(Rows, HostName, testing::ValuesIn(nameCases), [](const auto &row) { return row.param.name; });

TEST(HostNameParts, FailuresNameTheCodeAndSayWhatToDo)
{
    Outcome outcome = runHost({"name", "short", "--encoding", "roman", "\u65E5", "12345678901234567890123456789012", "ok"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "02 6F 6B  ok\n") << "the others follow";
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: name: \u65E5: kTECUnmappableElementErr (-8754): "));
    EXPECT_THAT(outcome.errors, HasSubstr("Mac Roman lacks it, another --encoding may have it"));
    EXPECT_THAT(outcome.errors, HasSubstr("kTECOutputBufferFullStatus (-8785): "));
    EXPECT_THAT(outcome.errors, HasSubstr("at most 31 bytes in Mac Roman"));
    EXPECT_THAT(runHost({"name", "short", "--volume", "1234567890123456789012345678"}).errors, HasSubstr("at most 27 bytes"));
    EXPECT_THAT(runHost({"name", "short", "--encoding", "9999", "x"}).errors, HasSubstr("kTextUnsupportedEncodingErr (-8738)"));
    EXPECT_THAT(runHost({"name", "unicode", "05 41"}).errors, HasSubstr("is cut off"));
    EXPECT_THAT(runHost({"name", "unicode", "\"\\04012345678901234567890123456789012\""}).errors, HasSubstr("at most 31"));
}

TEST(HostNameParts, AreToldAsJson)
{
    json list = json::parse(runHost({"name", "short", "--encoding", "japanese", "--json", "\u65E5\u672C", "\U0001F600"}).output);
    EXPECT_EQ(list[0]["text"], "\u65E5\u672C");
    EXPECT_EQ(list[0]["encoding"], (json{{"number", 1}, {"name", "Mac Japanese"}}));
    EXPECT_EQ(list[0]["hex"], "04 93 FA 96 7B");
    EXPECT_EQ(list[0]["same_again"], true);
    EXPECT_THAT(list[1]["error"].get<std::string>(), HasSubstr("-8754"));
    list = json::parse(runHost({"name", "unicode", "--json", "02 41 42"}).output);
    EXPECT_EQ(list[0]["units"], json({0x41, 0x42}));
    EXPECT_EQ(list[0]["unicode"], "AB");
}

// ---------------------------------------------------------------------------------------------------------------------
// path

using HostPath = HostTest;

TEST_F(HostPath, IsShownInAllItsFormsAndMadeAgain)
{
    makeFolder("Folder");
    makeFile("Folder/Letter");
    Words onDisk = {"ZERB_STARTUP_VOLUME=" + folder().path()};
    json location = json::parse(zerb({"path", "--json", "Folder/Letter"}, onDisk).output)[0];
    EXPECT_EQ(location["asked_for"], "Folder/Letter");
    EXPECT_EQ(location["is_folder"], false);
    EXPECT_EQ(location["location"]["short_name"], "Letter");
    EXPECT_EQ(location["location"]["short_name_hex"], "06 4C 65 74 74 65 72");
    EXPECT_EQ(location["location"]["path"], "/Folder/Letter");
    json folderInfo = json::parse(zerb({"info", "--json", "Folder"}, onDisk).output)[0];
    EXPECT_EQ(location["location"]["parent_id"], folderInfo["node_id"]);
    EXPECT_EQ(location["location"]["volume"], folderInfo["volume"]);
    std::string text = zerb({"path", "Folder", "/"}, onDisk).output;
    EXPECT_THAT(text, HasSubstr("Folder\n  volume      -100  "));
    EXPECT_THAT(text, HasSubstr("  parent ID   2\n  short name  Folder  (06 46 6F 6C 64 65 72)\n  path        /Folder\n"));
    EXPECT_THAT(text, EndsWith("  path        /\n"));
}

TEST_F(HostPath, OfLongAndOddNamesLeadsBackToThem)
{
    for (const std::string name : {"a name that has more than thirty-one bytes.txt", "new\nline", "-dash", "\u65E5\u672C", "a:b"})
    {
        makeFile(name);
        json location = json::parse(zerbWell({"path", "--json", "--", name}))[0]["location"];
        EXPECT_LE(location["short_name_hex"].get<std::string>().size(), 3 * 32U);
        EXPECT_EQ(location["path"], path(name));
    }
    makeFile("bad\xFF");
    EXPECT_THAT(zerbWell({"path", "bad\xFF"}), EndsWith("/bad\\xFF\n"));
    EXPECT_THAT(zerbWell({"path", "new\nline", "bad\xFF"}), HasSubstr("/new\\x0Aline\n"));
}

TEST_F(HostPath, IsMadeOfVolumeFolderAndName)
{
    makeFolder("Folder");
    makeFile("Folder/a:b");
    std::string folderID = info("Folder")["node_id"].dump();
    Words onDisk = {"ZERB_STARTUP_VOLUME=" + folder().path()};
    EXPECT_EQ(zerb({"path", "--from", "--", "-100", "2"}, onDisk).output, "/\n");
    EXPECT_EQ(zerb({"path", "--from", "-100", "2", "Folder"}, onDisk).output, "/Folder\n");
    std::string volumeName = folder().path().substr(folder().path().rfind('/') + 1);
    EXPECT_EQ(zerb({"path", "--from", volumeName, "2", "Folder"}, onDisk).output, "/Folder\n");
    EXPECT_EQ(zerbWell({"path", "--from", path("Folder/a:b"), folderID, "a:b"}), path("Folder/a:b") + "\n");
    json made = json::parse(zerbWell({"path", "--json", "--from", path("Folder"), folderID}))[0]["location"];
    EXPECT_EQ(made["folder_id"].dump(), folderID);
    EXPECT_EQ(made["path"], path("Folder"));
}

TEST_F(HostPath, ThatDoesNotExistIsAFailure)
{
    makeFile("Letter");
    Outcome outcome = zerb({"path", "missing", "Letter"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: path: missing: fnfErr (-43)"));
    EXPECT_THAT(outcome.output, StartsWith("Letter\n"));
    EXPECT_EQ(json::parse(zerb({"path", "--json", "missing"}).output)[0]["error"]["code"], -43);
    EXPECT_THAT(zerb({"path", "--from", "no such volume", "2"}).errors, HasSubstr("nsvErr (-35)"));
    EXPECT_THAT(zerb({"path", "--from", "-5", "2"}).errors, HasSubstr("nsvErr (-35)"));
    EXPECT_THAT(zerb({"path", "--from", "-100", "2", "no such name"}).errors, HasSubstr("fnfErr (-43)"));
    Outcome unknown = zerb({"path", "--from", "-100", "0x7FFFFFF0", "x"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_THAT(unknown.errors, HasSubstr("dirNFErr (-120)"));
    EXPECT_THAT(unknown.errors, HasSubstr("give a path of anything in it as VOLUME"));
}

}   // namespace
