// What the program loads when: work on files has no need of fonts, pictures and windows, and does not wait for them.

#include "tests/standin/processes.h"
#include "tests/whole/host_program.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::runHost;
using host_tests::Setting;
using testing::HasSubstr;
using testing::Not;

const char *const lateLibraries[] = {"libfreetype", "libfontconfig", "libpng", "libSDL", "libX11", "libwayland", "zerbdrawing"};

// The loader tells on the standard error output what it looks for and loads.
const char *const telling = "LD_DEBUG=files";

class LoadedLibraries : public HostTest
{
};

TEST_F(LoadedLibraries, WorkOnFilesLoadsNoFontsPicturesOrWindows)
{
    makeFile("file", "text");
    for (const host_tests::Words &words : {host_tests::Words{"info", "file"}, {"ls", "."}, {"copy", "file", "other"}, {"--help"}})
    {
        const Outcome outcome = zerb(words, {telling});
        EXPECT_THAT(outcome.errors, HasSubstr("libzerbstandin.so"));
        for (const char *library : lateLibraries)
            EXPECT_THAT(outcome.errors, Not(HasSubstr(library))) << words[0];
    }
}

TEST_F(LoadedLibraries, MeasuringTextLoadsTheFontEngine)
{
    const Outcome outcome = zerb({"text", "shorten", "-w", "90", "name"}, {telling});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, HasSubstr("zerbdrawing.so"));
    EXPECT_THAT(outcome.errors, HasSubstr("libfreetype"));
}

TEST_F(LoadedLibraries, OnlyThePartThatDrawsNamesTheFontEngine)
{
    for (const char *product : {"zerb", "zerb.so", "libzerbstandin.so"})
    {
        const support::Ended listed = support::run({"ldd", built(product)});
        ASSERT_EQ(listed.status, 0) << listed.output;
        EXPECT_THAT(listed.output, HasSubstr("libstdc++")) << product;
        for (const char *library : lateLibraries)
            EXPECT_THAT(listed.output, Not(HasSubstr(library))) << product;
    }
    EXPECT_THAT(support::run({"ldd", built("zerbdrawing.so")}).output, HasSubstr("libfreetype"));
}

TEST_F(LoadedLibraries, WithoutThePartThatDrawsAllCharactersAreSixPixelsWide)
{
    for (const std::string &product : {std::string("zerb"), std::string("zerb.so"), standInFile()})
        std::filesystem::copy_file(built(product), path(product));   // a link is followed
    Setting setting;
    setting.program = path("zerb");
    const Outcome outcome = runHost({"text", "shorten", "--json", "-w", "36", "Hello", "Letter"}, setting);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(nlohmann::json::parse(outcome.output),
              nlohmann::json::parse(R"([{"text": "Hello", "width": 30, "shortened": "Hello", "shortened_width": 30},
                                        {"text": "Letter", "width": 36, "shortened": "Lett\u2026", "shortened_width": 30}])"));
}

}   // namespace
