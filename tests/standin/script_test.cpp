// The system's script and region, from the process's locale; and the names of files in the encoding that they decide.
#include "standin/text/script_manager.h"
#include "standin/text/encodings.h"
#include "standin/text/system_encoding.h"
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <cstring>

namespace
{

using namespace support;

struct LocaleCase
{
    const char *name, *locale;
    ScriptCode script;
    RegionCode region;
    TextEncoding encoding;
};

class Locales : public testing::TestWithParam<LocaleCase>
{
};

TEST_P(Locales, HaveAScriptARegionAndAnEncodingThatConverts)
{
    const standin::SystemScript system = standin::scriptOfLocale(GetParam().locale);
    EXPECT_EQ(system.script, GetParam().script);
    EXPECT_EQ(system.region, GetParam().region);
    TextEncoding encoding = 0x5555;
    EXPECT_EQ(UpgradeScriptInfoToTextEncoding(system.script, kTextLanguageDontCare, system.region, nullptr, &encoding), noErr);
    EXPECT_EQ(encoding, GetParam().encoding);
    EXPECT_NE(standin::codeTableOf(encoding), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Rows, Locales,
                         testing::Values(LocaleCase{"None", "", 0, 0, 0}, LocaleCase{"C", "C", 0, 0, 0},
                                         LocaleCase{"CWithUtf8", "C.UTF-8", 0, 0, 0}, LocaleCase{"Posix", "POSIX", 0, 0, 0},
                                         LocaleCase{"Unknown", "xx_YY.UTF-8", 0, 0, 0}, LocaleCase{"UnitedStates", "en_US.UTF-8", 0, 0, 0},
                                         LocaleCase{"Britain", "en_GB.UTF-8", 0, 2, 0}, LocaleCase{"Germany", "de_DE.UTF-8@euro", 0, 3, 0},
                                         LocaleCase{"LanguageAlone", "de", 0, 3, 0}, LocaleCase{"Switzerland", "de_CH", 0, 19, 0},
                                         LocaleCase{"Spain", "es_ES.UTF-8", 0, 8, 0}, LocaleCase{"Mexico", "es_MX.UTF-8", 0, 86, 0},
                                         LocaleCase{"LongerLanguage", "est", 0, 0, 0}, LocaleCase{"Brazil", "pt_BR", 0, 71, 0},
                                         LocaleCase{"Japan", "ja_JP.UTF-8", 1, 14, 1}, LocaleCase{"Taiwan", "zh_TW.UTF-8", 2, 53, 2},
                                         LocaleCase{"HongKong", "zh_HK.UTF-8", 2, 53, 2}, LocaleCase{"China", "zh_CN.UTF-8", 25, 52, 25},
                                         LocaleCase{"Korea", "ko_KR.UTF-8", 3, 51, 3}, LocaleCase{"Egypt", "ar_EG.UTF-8", 4, 16, 4},
                                         LocaleCase{"Iran", "fa_IR", 4, 48, 0x8C}, LocaleCase{"Israel", "he_IL.UTF-8", 5, 13, 5},
                                         LocaleCase{"Greece", "el_GR.UTF-8", 6, 20, 6}, LocaleCase{"Russia", "ru_RU.UTF-8", 7, 49, 7},
                                         LocaleCase{"Ukraine", "uk_UA.UTF-8", 7, 62, 0x98}, LocaleCase{"Serbia", "sr_RS.UTF-8", 7, 65, 7},
                                         LocaleCase{"SerbiaInLatin", "sr_RS.UTF-8@latin", 0, 25, 36},
                                         LocaleCase{"Thailand", "th_TH.UTF-8", 21, 54, 21}, LocaleCase{"Poland", "pl_PL.UTF-8", 29, 42, 29},
                                         LocaleCase{"Czechia", "cs_CZ.UTF-8", 29, 56, 29}, LocaleCase{"Turkey", "tr_TR.UTF-8", 0, 24, 35},
                                         LocaleCase{"Croatia", "hr_HR.UTF-8", 0, 68, 36}, LocaleCase{"Iceland", "is_IS.UTF-8", 0, 21, 37},
                                         LocaleCase{"Romania", "ro_RO.UTF-8", 0, 39, 38},
                                         LocaleCase{"WalesAsRoman", "cy_GB.UTF-8", 0, 0, 0},
                                         LocaleCase{"IndiaAsRoman", "hi_IN.UTF-8", 0, 0, 0}),
                         [](const testing::TestParamInfo<LocaleCase> &row) { return row.param.name; });

TEST(ScriptManager, TellsRomanWithoutALocale)
{
    EXPECT_EQ(GetScriptManagerVariable(smSysScript), 0);
    EXPECT_EQ(GetScriptManagerVariable(smRegionCode), 0);
}

TEST(ScriptManager, HasNoOtherVariables)
{
    for (int selector = -200; selector <= 200; ++selector)
        EXPECT_EQ(GetScriptManagerVariable(static_cast<SInt16>(selector)), 0) << selector;
}

const Role tellsScript("tellsScriptAndRegion", [](const RoleArguments &expected) {
    EXPECT_EQ(std::to_string(GetScriptManagerVariable(smSysScript)), expected[0]);
    EXPECT_EQ(std::to_string(GetScriptManagerVariable(smRegionCode)), expected[1]);
    EXPECT_EQ(std::to_string(standin::systemEncoding()), expected[2]);
    setenv("LC_ALL", "ko_KR.UTF-8", 1);
    EXPECT_EQ(std::to_string(GetScriptManagerVariable(smSysScript)), expected[0]) << "it is asked for once";
});

TEST(ScriptManager, ReadsTheLocaleOfTheProcess)
{
    playRole("tellsScriptAndRegion", {"1", "14", "1"}, {0, {"LC_ALL=ja_JP.UTF-8", "LC_CTYPE=ru_RU", "LANG=de_DE"}});
    playRole("tellsScriptAndRegion", {"7", "49", "7"}, {0, {"LC_ALL=", "LC_CTYPE=ru_RU.UTF-8", "LANG=de_DE.UTF-8"}});
    playRole("tellsScriptAndRegion", {"0", "3", "0"}, {0, {"LC_ALL=", "LC_CTYPE=", "LANG=de_DE.UTF-8"}});
    playRole("tellsScriptAndRegion", {"0", "0", "0"}, {0, {"LC_ALL=", "LC_CTYPE=", "LANG="}});
}

// ---- names in the system's encoding ----

void useSpec(FSSpec &spec, const std::string &text)
{
    spec.name[0] = static_cast<unsigned char>(text.size());
    std::memcpy(spec.name + 1, text.data(), text.size());
}

std::string textOf(const FSSpec &spec)
{
    return std::string(spec.name + 1, spec.name + 1 + spec.name[0]);
}

// Each file holds its own name. Arguments: the folder, then pairs of a name in UTF-8 and its short form, or "#" for a hashed one.
const Role looksAtShortNames("looksAtShortNames", [](const RoleArguments &arguments) {
    for (std::size_t index = 1; index + 1 < arguments.size(); index += 2)
    {
        const std::string &name = arguments[index], &shortForm = arguments[index + 1];
        SCOPED_TRACE(name);
        FSRef file = refAt(arguments[0] + "/" + name), again{};
        FSSpec spec = specOf(file);
        if (shortForm == "#")
            EXPECT_NE(textOf(spec).find('#'), std::string::npos);
        else
            EXPECT_EQ(textOf(spec), shortForm);
        ASSERT_EQ(findSpec(spec, again), noErr);
        EXPECT_EQ(forkOf(again, false), bytesOf(name));
    }
});

class NamesInLocales : public DiskTest
{
protected:
    void play(const std::string &locale, const std::vector<std::string> &namesAndShortForms)
    {
        RoleArguments arguments = namesAndShortForms;
        arguments.insert(arguments.begin(), folder().path());
        for (std::size_t index = 1; index < arguments.size(); index += 2)
            writeFile(folder() / arguments[index], arguments[index]);
        playRole("looksAtShortNames", arguments, {0, {"LC_ALL=" + locale}});
    }
};

TEST_P(NamesInLocales, HaveShortFormsInTheEncodingOfTheLocale)
{
    const std::string japanese = "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E.txt";   // 日本語
    const std::string backslash = "a\\b", yen = "a\xC2\xA5"
                                                "b";
    const std::string longName = [&] {
        std::string text;
        for (int i = 0; i < 16; ++i)
            text += "\xE6\x97\xA5";
        return text;
    }();
    play("ja_JP.UTF-8",
         {japanese, "\x93\xFA\x96\x7B\x8C\xEA.txt", backslash,
          "a\x80"
          "b",
          yen, "a\\b", longName, "#", longName + ".\xE6\x97\xA5\xE6\x97\xA5\xE6\x97\xA5", "#", "\xC3\xA9", "#", "plain", "plain"});
    play("ru_RU.UTF-8", {"\xD0\x9C\xD0\xB8\xD1\x80", "\x8C\xE8\xF0", japanese, "#"});
    play("el_GR.UTF-8", {"\xCE\xBB\xCF\x8C", "\xEC\xDE", japanese, "#"});
    play("C", {japanese, "#", "\xC3\xA9", "\x8E", backslash, "a\\b", yen,
               "a\xB4"
               "b"});
}

// Bytes that break off, or have no character, name nothing.
const Role refusesBadNames("refusesNamesThatAreNoText", [](const RoleArguments &arguments) {
    FSRef folder = refAt(arguments[0]), found{};
    FSSpec spec{};
    const FSCatalogInfo info = infoOf(folder, kFSCatInfoVolume | kFSCatInfoNodeID);
    spec.vRefNum = info.volume;
    spec.parID = static_cast<SInt32>(info.nodeID);
    for (const char *bad : {"\x93", "a\x93 ", "\x85\x40", "\xFD\x81"})
    {
        useSpec(spec, bad);
        EXPECT_EQ(findSpec(spec, found), bdNamErr) << testing::PrintToString(bad);
    }
    useSpec(spec, "\x93\xFA");
    EXPECT_EQ(findSpec(spec, found), fnfErr);
});

TEST_P(NamesInLocales, ThatAreNoTextNameNothing)
{
    playRole("refusesNamesThatAreNoText", {folder().path()}, {0, {"LC_ALL=ja_JP.UTF-8"}});
}

INSTANTIATE_TEST_SUITE_P(TwoDisks, NamesInLocales, testing::Values(DiskKind::tmpfs, DiskKind::ext4), diskName);

}   // namespace
