// Which encoding a hint chooses: the same for both converters.

#include "tests/contract/names_fixture.h"
#include "tests/contract/rows.h"

#include <ostream>

namespace
{

constexpr OSStatus noCodeOfAnyone = -12345;

const Calls systemVariables = {"GetScriptManagerVariable(18)", "GetScriptManagerVariable(40)"};

std::string upgrade(SInt64 script, SInt64 region)
{
    return "UpgradeScriptInfoToTextEncoding(" + decimal(script) + ", -128, " + decimal(region) + ", -, encoding)";
}

// Every test here holds for both converters.
class NamesEncoding : public NamesTest, public testing::WithParamInterface<bool>
{
protected:
    OSErr convert(TextEncoding hint) { return GetParam() ? toShortName("name", hint) : toUnicodeName("name", hint); }

    std::string converted() { return GetParam() ? quoted(shortName) : '"' + textOf(outputs.name) + '"'; }

    Calls conversion(TextEncoding encoding) { return GetParam() ? conversionToText(encoding, 8, 31) : conversionToUnicode(encoding, 4); }

    // In the other one of the double's two encodings each byte is one below its unit.
    std::string inShifted() { return GetParam() ? "\"m`ld\"" : "\"obnf\""; }

    static constexpr TextEncoding shifted = NamesDouble::shifted;
};

TEST_P(NamesEncoding, HintThatSaysOneIsTakenWithoutAskingTheSystem)
{
    EXPECT_EQ(convert(shifted), noErr);
    EXPECT_EQ(converted(), inShifted());
    EXPECT_EQ(platform.calls(), mappingCalls(shifted) + conversion(shifted));
}

TEST_P(NamesEncoding, OnlyTheBaseOfAHintCounts)
{
    EXPECT_EQ(convert(0x00020000 | shifted), noErr);
    EXPECT_EQ(platform.calls(), mappingCalls(0x00020000 | shifted) + conversion(shifted));
}

// It is told by all its 32 bits.
TEST_P(NamesEncoding, HintsThatShareBitsWithTheUnknownOneAreNotUnknown)
{
    for (const TextEncoding hint : {0x0001FFFFu, 0xFFFFFFFFu, 0xFFFEu, 0x8000FFFFu})
    {
        platform.forgetCalls();
        EXPECT_EQ(convert(hint), static_cast<OSErr>(kTextUnsupportedEncodingErr));
        EXPECT_EQ(platform.calls().front(), "CreateTextEncoding(0x103, 2, 0)");
        EXPECT_EQ(platform.calls().at(1), "GetTextEncodingBase(" + hex(hint) + ")");
    }
}

TEST_P(NamesEncoding, UnknownHintMeansThatOfTheSystemsScriptAndRegion)
{
    EXPECT_EQ(convert(0xFFFF), noErr);
    EXPECT_EQ(converted(), inShifted());
    EXPECT_EQ(platform.calls(), systemVariables + Calls{upgrade(3, 61)} + mappingCalls(shifted) + conversion(shifted));
}

TEST_P(NamesEncoding, BaseOfTheSystemsEncodingIsTaken)
{
    platform.names.scriptAnswers = {{{3, 61}, {noErr, 0x00010000 | shifted}}};
    EXPECT_EQ(convert(0xFFFF), noErr);
    EXPECT_EQ(platform.calls(), systemVariables + Calls{upgrade(3, 61)} + mappingCalls(0x00010000 | shifted) + conversion(shifted));
}

TEST_P(NamesEncoding, ScriptAndRegionHaveSixteenBits)
{
    platform.names.systemScript = 0x00017FFF;
    platform.names.systemRegion = 0x0001FFFE;
    platform.names.scriptAnswers = {{{0x7FFF, -2}, {noErr, shifted}}};
    EXPECT_EQ(convert(0xFFFF), noErr);
    EXPECT_EQ(platform.calls(), systemVariables + Calls{upgrade(32767, -2)} + mappingCalls(shifted) + conversion(shifted));
}

TEST_P(NamesEncoding, RegionThatTheScriptDoesNotKnowIsLeftOut)
{
    platform.names.scriptAnswers = {{{3, -128}, {noErr, shifted}}};
    EXPECT_EQ(convert(0xFFFF), noErr);
    EXPECT_EQ(converted(), inShifted());
    EXPECT_EQ(platform.calls(),
              systemVariables + Calls{upgrade(3, 61)} + Calls{upgrade(3, -128)} + mappingCalls(shifted) + conversion(shifted));
}

TEST_P(NamesEncoding, ScriptThatHasNoEncodingAtAllMeansMacRoman)
{
    platform.names.scriptAnswers.clear();
    EXPECT_EQ(convert(0xFFFF), noErr);
    EXPECT_EQ(converted(), "\"name\"");
    EXPECT_EQ(platform.calls(), systemVariables + Calls{upgrade(3, 61)} + Calls{upgrade(3, -128)} + mappingCalls(0) + conversion(0));
}

TEST_P(NamesEncoding, AnyOtherErrorMeansMacRomanAndIsNotTriedAgain)
{
    for (const OSStatus status : {noCodeOfAnyone, OSStatus{1}, OSStatus{-49}, OSStatus{-51}, OSStatus{0x10000}, OSStatus{0xFFCE},
                                  static_cast<OSStatus>(0x7FFFFFCE)})
    {
        SCOPED_TRACE(status);
        platform.forgetCalls();
        platform.names.scriptAnswers = {{{3, 61}, {status, shifted}}, {{3, -128}, {noErr, shifted}}};
        EXPECT_EQ(convert(0xFFFF), noErr);
        EXPECT_EQ(converted(), "\"name\"");
        EXPECT_EQ(platform.calls(), systemVariables + Calls{upgrade(3, 61)} + mappingCalls(0) + conversion(0));
    }
}

TEST_P(NamesEncoding, EncodingThatAFailureLeftBehindIsNotUsed)
{
    for (const OSStatus status : {OSStatus{paramErr}, noCodeOfAnyone})
    {
        platform.forgetCalls();
        platform.names.scriptAnswers = {{{3, 61}, {paramErr, shifted}}, {{3, -128}, {status, shifted}}};
        EXPECT_EQ(convert(0xFFFF), noErr);
        EXPECT_EQ(converted(), "\"name\"");
        EXPECT_EQ(platform.calls(), systemVariables + Calls{upgrade(3, 61)} + Calls{upgrade(3, -128)} + mappingCalls(0) + conversion(0));
    }
}

TEST_P(NamesEncoding, EncodingThatNoConverterKnowsIsAnErrorEvenIfTheSystemNamesIt)
{
    platform.names.scriptAnswers = {{{3, 61}, {noErr, 99}}};
    EXPECT_EQ(convert(0xFFFF), static_cast<OSErr>(kTextUnsupportedEncodingErr));
    EXPECT_EQ(converted(), "\"\"");
}

INSTANTIATE_TEST_SUITE_P(Both, NamesEncoding, testing::Bool(),
                         [](const auto &parameter) { return parameter.param ? "ToShortName" : "ToUnicodeName"; });

struct StatusCase
{
    const char *name;
    OSStatus status;
    OSErr result;
};

void PrintTo(const StatusCase &row, std::ostream *stream)
{
    *stream << row.name;
}

const StatusCase statusCases[] = {
    {"OrdinaryCode", -8785, -8785},
    {"CodeOfThirtyTwoBits", 0x12345678, 0x5678},
    {"CodeWhoseLowHalfIsZero", 0x00010000, 0},
    {"PositiveCode", 1, 1},
    {"ParameterError", -50, -50},
};

// A code has 32 bits inside and comes back with its lower 16; it is a failure by what it is inside.
class NamesStatus : public NamesTest, public testing::WithParamInterface<StatusCase>
{
};

TEST_P(NamesStatus, ConverterThatCannotBeMadeLeavesAnEmptyName)
{
    platform.failEvery("CreateUnicodeToTextInfo", GetParam().status);
    platform.failEvery("CreateTextToUnicodeInfo", GetParam().status);
    EXPECT_EQ(toShortName("name"), GetParam().result);
    EXPECT_EQ(toUnicodeName("name"), GetParam().result);
    EXPECT_EQ(shortName[0], 0);
    EXPECT_EQ(outputs.name.length, 0);
    EXPECT_EQ(platform.calls(),
              mappingCalls(0) + Calls{conversionToText(0, 8, 31)[0]} + mappingCalls(0) + Calls{conversionToUnicode(0, 4)[0]});
}

TEST_P(NamesStatus, ConversionThatFailsLeavesAnEmptyNameAndNoConverter)
{
    platform.failEvery("ConvertFromUnicodeToText", GetParam().status);
    platform.failEvery("ConvertFromTextToUnicode", GetParam().status);
    EXPECT_EQ(toShortName("name"), GetParam().result);
    EXPECT_EQ(toUnicodeName("name"), GetParam().result);
    EXPECT_EQ(shortName[0], 0);
    EXPECT_EQ(outputs.name.length, 0);
    EXPECT_EQ(platform.calls(), mappingCalls(0) + conversionToText(0, 8, 31) + mappingCalls(0) + conversionToUnicode(0, 4));
}

TEST_P(NamesStatus, DisposalThatFailsIsNotReported)
{
    platform.failEvery("DisposeUnicodeToTextInfo", GetParam().status);
    platform.failEvery("DisposeTextToUnicodeInfo", GetParam().status);
    EXPECT_EQ(toShortName("name"), noErr);
    EXPECT_EQ(toUnicodeName("name"), noErr);
    EXPECT_EQ(quoted(shortName), "\"name\"");
    EXPECT_EQ(textOf(outputs.name), "name");
}

INSTANTIATE_TEST_SUITE_P(Rows, NamesStatus, testing::ValuesIn(statusCases), rowName);

}   // namespace
