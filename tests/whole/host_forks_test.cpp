// The host's command for what files contain: forks.

#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::Words;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

class HostForks : public HostTest
{
protected:
    std::string contents(const std::string &name) const
    {
        std::ifstream stream(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    std::string resourceOf(const std::string &name) const { return zerbWell({"forks", "export", "--resource", name, "--to", "-"}); }

    void giveResource(const std::string &name, const std::string &bytes) const
    {
        makeFile("bytes", bytes);
        zerbWell({"forks", "import", "--resource", name, "--from", "bytes"});
        ASSERT_EQ(unlink(path("bytes").c_str()), 0);
    }

    void expectNoTemporaries() const
    {
        for (const auto &entry : std::filesystem::directory_iterator(folder().path()))
            EXPECT_THAT(entry.path().filename().string(), Not(HasSubstr("zerb-")));
    }
};

// Bytes that repeat nowhere near.
std::string noise(std::size_t count)
{
    std::string bytes;
    for (std::uint32_t state = 1; bytes.size() < count; state = state * 1664525 + 1013904223)
        bytes += static_cast<char>(state >> 24);
    return bytes;
}

TEST_F(HostForks, AreListed)
{
    makeFile("Letter", "12345");
    EXPECT_THAT(zerbWell({"forks", "list", "Letter"}), HasSubstr("  1 fork                       5 bytes"));
    giveResource("Letter", "resource");
    json list = json::parse(zerbWell({"forks", "list", "--json", "Letter"}));
    EXPECT_EQ(list[0]["forks"][0]["name"], "");
    EXPECT_EQ(list[0]["forks"][0]["logical_size"], 5);
    EXPECT_EQ(list[0]["forks"][1]["name"], "RESOURCE_FORK");
    EXPECT_EQ(list[0]["forks"][1]["logical_size"], 8);
    EXPECT_EQ(list[0]["resource_size"], 8);
    EXPECT_EQ(list[0]["total"]["forks"], 2);
    EXPECT_EQ(list[0]["total"]["logical_size"], 13);
    Outcome outcome = zerb({"forks", "list", "missing", ".", "Letter"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: forks: missing: fnfErr (-43)"));
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: forks: .: notAFileErr (-1302): is a folder; only files have forks"));
    EXPECT_THAT(outcome.output, HasSubstr("2 forks"));
    EXPECT_EQ(json::parse(zerb({"forks", "list", "--json", "missing"}).output)[0]["error"]["code"], -43);
}

TEST_F(HostForks, AreDumped)
{
    makeFile("Letter", "Dear Mr. Babbage\n\xFF");
    EXPECT_EQ(zerbWell({"forks", "dump", "Letter"}), "00000000  44 65 61 72 20 4D 72 2E  20 42 61 62 62 61 67 65  |Dear Mr. Babbage|\n"
                                                     "00000010  0A FF                                             |..|\n");
    EXPECT_EQ(zerbWell({"forks", "dump", "--start", "5", "--length", "3", "Letter"}),
              "00000005  4D 72 2E                                          |Mr.|\n");
    EXPECT_EQ(zerbWell({"forks", "dump", "--raw", "Letter"}), "Dear Mr. Babbage\n\xFF");
    EXPECT_EQ(zerbWell({"forks", "dump", "--resource", "Letter"}), "");
    EXPECT_EQ(zerbWell({"forks", "dump", "--start", "100", "Letter"}), "");
    expectFailure(zerb({"forks", "dump", "missing"}), "missing", "fnfErr (-43)");
}

TEST_F(HostForks, OfThreeMegabytesGoInAndOutUnchanged)
{
    std::string bytes = noise(3'000'001);
    makeFile("Letter", "data");
    makeFile("bytes", bytes);
    zerbWell({"set", "--type", "TEXT", "--label", "red", "Letter"});
    Outcome outcome = zerb({"forks", "import", "--resource", "--progress", "Letter", "--from", "bytes"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "importing: 3.0 MB of 3.0 MB\n");
    zerbWell({"forks", "export", "--resource", "Letter", "--to", path("out")});
    EXPECT_TRUE(contents("out") == bytes);
    EXPECT_TRUE(resourceOf("Letter") == bytes);
    EXPECT_EQ(contents("Letter"), "data");
    EXPECT_EQ(info("Letter")["finder"]["type"], "TEXT");
    expectNoTemporaries();
    makeFile("new", "other data");
    zerbWell({"forks", "import", "Letter", "--from", "new"});
    EXPECT_EQ(contents("Letter"), "other data");
    EXPECT_TRUE(resourceOf("Letter") == bytes) << "the other fork stays";
    zerbWell({"forks", "import", "--resource", "Letter", "--from", "-"});   // there is nothing on the standard input
    EXPECT_EQ(info("Letter")["forks"]["resource"]["logical_size"], 0);
}

TEST_F(HostForks, ThatCannotBeReplacedStayAsTheyAre)
{
    makeFile("Letter", "data");
    makeFile("new", "new");
    Outcome outcome = zerb({"forks", "import", "Letter", "--from", "missing"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "zerb: forks: missing: No such file or directory\n");
    EXPECT_THAT(zerb({"forks", "import", "Letter", "--from", "."}).errors, HasSubstr("Is a directory"));
    zerbWell({"set", "--lock", "Letter"});
    expectFailure(zerb({"forks", "import", "Letter", "--from", "new"}), "Letter", "fLckdErr (-45)");
    zerbWell({"set", "--unlock", "Letter"});
    outcome = zerb({"forks", "import", "Letter", "--from", path("new")}, {"ZERB_STARTUP_VOLUME=" + folder().path() + ",noexchange"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("--in-place writes into it"));
    EXPECT_EQ(contents("Letter"), "data");
    expectNoTemporaries();
}

TEST_F(HostForks, AreWrittenInPlaceWhereAsked)
{
    makeFile("Letter", "a longer text than before");
    makeFile("new", "new");
    ASSERT_EQ(link(path("Letter").c_str(), path("Second").c_str()), 0);
    EXPECT_EQ(zerb({"forks", "import", "Letter", "--from", "new"}).status, 1);
    zerbWell({"forks", "import", "--in-place", "Letter", "--from", "new"});
    EXPECT_EQ(contents("Second"), "new");
    expectNoTemporaries();
}

TEST_F(HostForks, AreNotExportedOverOtherFiles)
{
    makeFile("Letter", "data");
    makeFile("out", "precious");
    Outcome outcome = zerb({"forks", "export", "Letter", "--to", "out"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: forks: out: there is such a file already"));
    EXPECT_EQ(contents("out"), "precious");
    EXPECT_THAT(zerb({"forks", "export", "Letter", "--to", "no/out"}).errors, HasSubstr("No such file"));
}

TEST_F(HostForks, AreCopiedOverOthers)
{
    makeFile("From", "from");
    makeFile("To", "what was there");
    giveResource("From", noise(70'000));
    EXPECT_EQ(zerbWell({"forks", "copy", "-v", "--resource", "From", "To"}), "From -> To, resource fork, 70 kB\n");
    EXPECT_EQ(contents("To"), "what was there");
    EXPECT_TRUE(resourceOf("To") == noise(70'000));
    zerbWell({"forks", "copy", "From", "To"});
    EXPECT_EQ(contents("To"), "from");
    makeFile("plain", "plain");
    zerbWell({"forks", "copy", "--", "plain", "To"});
    EXPECT_EQ(resourceOf("To"), "");
    expectFailure(zerb({"forks", "copy", "From", "missing"}), "missing", "fnfErr (-43)");
    EXPECT_THAT(zerb({"forks", "copy", "From", "./From"}).errors, HasSubstr("is the file itself"));
    EXPECT_EQ(zerb({"forks", "copy", "--data", "--resource", "From", "To"}).status, 2);
}

TEST_F(HostForks, OfFilesWithOddNames)
{
    for (const std::string name : {"-dash", "bad\xFF", "new\nline"})
    {
        makeFile(name, "text");
        EXPECT_EQ(zerbWell({"forks", "dump", "--raw", "--", name}), "text");
        makeFile("in", "resource");
        zerbWell({"forks", "import", "--resource", "--from", "in", "--", name});
        EXPECT_EQ(zerbWell({"forks", "dump", "--raw", "--resource", "--", name}), "resource");
    }
    EXPECT_THAT(zerbWell({"forks", "list", "new\nline"}), HasSubstr("new\\x0Aline\n"));
}

}   // namespace
