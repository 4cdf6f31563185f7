// Small icons: those of a family, and pictures out of a list.

#include "tests/contract/dialogs_fixture.h"

namespace
{

class DialogsIcons : public DialogsTest
{
};

struct RectRow
{
    const char *name;
    Rect where;
};

void PrintTo(const RectRow &row, std::ostream *stream)
{
    *stream << row.name;
}

const RectRow rectRows[] = {
    {"AsLargeAsTheIcon", {10, 20, 26, 36}},
    {"Larger", {10, 20, 300, 400}},
    {"Smaller", {10, 20, 11, 21}},
    {"Empty", {10, 20, 10, 20}},
    {"UpsideDown", {10, 20, -300, -400}},
    {"LeftOfTheOrigin", {-7, -9, 9, 7}},
    {"WrapsAround", {32767, 32760, 32767, 32767}},
    {"FarthestCorner", {-32768, -32768, 0, 0}},
};

class DialogsIconsAnywhere : public DialogsIcons, public testing::WithParamInterface<RectRow>
{
};

INSTANTIATE_TEST_SUITE_P(Rects, DialogsIconsAnywhere, testing::ValuesIn(rectRows), rowName);

TEST_P(DialogsIconsAnywhere, IconIs16By16AtTheTopLeftCorner)
{
    EXPECT_EQ(MyDrawIconInSuite(family, GetParam().where, 3, kTransformSelected), noErr);
    EXPECT_EQ(platform.calls(), smallIconCalls(GetParam().where, family, 3, kTransformSelected));
}

TEST_P(DialogsIconsAnywhere, ButtonIs32By32AtTheTopLeftCorner)
{
    const Rect place = GetParam().where;
    MyDrawIconButton(family, place, 3, kTransformSelected, 0);
    const Calls expected = largeIconCalls(place, family, 3, kTransformSelected);
    ASSERT_GE(platform.calls().size(), expected.size());
    EXPECT_EQ(Calls(platform.calls().begin(), platform.calls().begin() + 6), expected);
}

TEST_F(DialogsIcons, CallsAreTheseInThisOrder)
{
    EXPECT_EQ(MyDrawIconInSuite(family, {10, 20, 26, 36}, 3, kTransformSelected), noErr);
    EXPECT_EQ(platform.calls(), (Calls{"GetIconSuite(suite, 128, 0xFF00)", "SetRect(rect, 0, 0, 16, 16)", "OffsetRect(rect, 20, 10)",
                                       "PlotIconSuite({10, 20, 26, 36}, 3, 0x4000, suite 128)", "DisposeIconSuite(suite 128, 1)"}));
}

TEST_F(DialogsIcons, AlignmentAndTransformAreHandedOnAsTheyAre)
{
    constexpr SInt16 numbers[] = {-32768, -1, 0, 1, 3, 0x0F00, 0x4001, 32767};
    for (const SInt16 alignment : numbers)
        for (const SInt16 transform : numbers)
        {
            platform.forgetCalls();
            EXPECT_EQ(MyDrawIconInSuite(family, where, alignment, transform), noErr);
            EXPECT_EQ(platform.calls(), smallIconCalls(where, family, alignment, transform));
        }
}

TEST_F(DialogsIcons, MissingFamilyIsNotFoundAndNothingIsDrawn)
{
    EXPECT_EQ(MyDrawIconInSuite(noFamily, where, 0, 0), resNotFound);
    EXPECT_EQ(resNotFound, -192);
    EXPECT_EQ(platform.calls(), Calls{"GetIconSuite(suite, 129, 0xFF00)"});
}

TEST_F(DialogsIcons, FamilyOfLargeIconsAloneHasNoSmallOne)
{
    platform.icons.families[-7] = 0xFF;
    EXPECT_EQ(MyDrawIconInSuite(-7, where, 0, 0), resNotFound);
    EXPECT_EQ(platform.calls(), Calls{"GetIconSuite(suite, -7, 0xFF00)"});
}

TEST_F(DialogsIcons, OnlyTheSuiteDecidesAndNotTheCodeThatComesWithIt)
{
    platform.icons.codeBesideASuite = ioErr;
    EXPECT_EQ(MyDrawIconInSuite(family, where, 0, 0), noErr);
    EXPECT_EQ(platform.calls(), smallIconCalls(where, family, 0, 0));
    for (const OSErr code : {OSErr{noErr}, ioErr, memFullErr})
    {
        platform.icons.codeWithoutASuite = code;
        EXPECT_EQ(MyDrawIconInSuite(noFamily, where, 0, 0), resNotFound);
    }
}

TEST_F(DialogsIcons, FailureThatMakesNoSuiteIsNotFoundToo)
{
    platform.failCall(1, ioErr);
    EXPECT_EQ(onPatternedStack([this] { return MyDrawIconInSuite(family, where, 0, 0); }), resNotFound);
    EXPECT_EQ(platform.calls(), Calls{"GetIconSuite(suite, 128, 0xFF00)"});
}

TEST_F(DialogsIcons, FailureToDrawIsTheResultOnceTheSuiteIsDisposedOf)
{
    for (const OSErr code : {ioErr, memFullErr, OSErr{-32768}, OSErr{32767}})
    {
        platform.forgetCalls();
        platform.failEvery("PlotIconSuite", code);
        EXPECT_EQ(MyDrawIconInSuite(family, where, 0, 0), code);
        EXPECT_EQ(platform.calls(), smallIconCalls(where, family, 0, 0));
    }
}

TEST_F(DialogsIcons, FailureToDisposeOfTheSuiteIsNoFailure)
{
    platform.failEvery("DisposeIconSuite", ioErr);
    EXPECT_EQ(MyDrawIconInSuite(family, where, 0, 0), noErr);
}

class DialogsPictures : public DialogsTest
{
protected:
    DialogsPictures()
    {
        for (int index = 0; index < 5 * 32; ++index)
            bytes += static_cast<char>(index * 89 % 251);
        platform.resources.files[1].push_back({fourCharCode("SICN"), 300, bytes});
        platform.drawing.current = &platform.drawing.window.port;
    }

    void TearDown() override
    {
        platform.drawing.current = &platform.drawing.screen;
        DialogsTest::TearDown();
    }

    std::string pictureAt(std::size_t index) const { return bytes.substr(index * 32, 32); }

    std::string lastPicture() const
    {
        const std::vector<UInt8> &copied = platform.drawing.pictures.back().bytes;
        return std::string(copied.begin(), copied.end());
    }

    // `rect` is both the picture's and the destination.
    static Calls pictureCalls(const std::string &place, const std::string &rect)
    {
        return {"GetResource('SICN', 300)",
                "HLock('SICN' 300)",
                "ForeColor(33)",
                "GetWindowPort(window)",
                "GetPortBitMapForCopyBits(port:window)",
                "CopyBits('SICN' 300 + " + place + " by 2 in " + rect + ", bits:window, " + rect + ", " + rect + ", 0, -)",
                "HUnlock('SICN' 300)"};
    }

    std::string bytes;
    const WindowRef window = &platform.drawing.window;
};

TEST_F(DialogsPictures, CallsAreTheseInThisOrder)
{
    DrawSICN(window, 300, 2, {10, 20});
    EXPECT_EQ(platform.calls(), pictureCalls("64", "{10, 20, 26, 36}"));
}

TEST_F(DialogsPictures, PictureIsTheOneOfThisNumber)
{
    for (SInt16 index = 0; index < 5; ++index)
    {
        platform.forgetCalls();
        DrawSICN(window, 300, index, {0, 0});
        EXPECT_EQ(platform.calls(), pictureCalls(decimal(index * 32), "{0, 0, 16, 16}"));
        EXPECT_EQ(lastPicture(), pictureAt(static_cast<std::size_t>(index)));
    }
}

TEST_F(DialogsPictures, PlaceMayBeAnywhereAndWrapsAround)
{
    DrawSICN(window, 300, 1, {-5, -32768});
    EXPECT_EQ(platform.calls(), pictureCalls("32", "{-5, -32768, 11, -32752}"));
    platform.forgetCalls();
    DrawSICN(window, 300, 1, {32767, 32752});
    EXPECT_EQ(platform.calls(), pictureCalls("32", "{32767, 32752, -32753, -32768}"));
    EXPECT_EQ(lastPicture(), pictureAt(1));
}

TEST_F(DialogsPictures, ListMayLieInAnOlderFile)
{
    platform.resources.current = 0;
    DrawSICN(window, 300, 4, {0, 0});
    EXPECT_EQ(lastPicture(), pictureAt(4));
}

TEST_F(DialogsPictures, BlackIsSetInTheCurrentPortAndStays)
{
    const RGBColor black = {0, 0, 0}, other = platform.drawing.screen.foreColor;
    DrawSICN(window, 300, 0, {0, 0});
    EXPECT_TRUE(sameBytes(platform.drawing.window.port.foreColor, black));
    EXPECT_TRUE(sameBytes(platform.drawing.pictures.back().foreColor, black));
    EXPECT_TRUE(sameBytes(platform.drawing.screen.foreColor, other));

    platform.drawing.window.port.foreColor = other;
    platform.drawing.current = &platform.drawing.screen;
    DrawSICN(window, 300, 0, {0, 0});
    EXPECT_EQ(platform.drawing.pictures.back().port, "bits:window") << "whichever port is current";
    EXPECT_TRUE(sameBytes(platform.drawing.screen.foreColor, black));
    EXPECT_TRUE(sameBytes(platform.drawing.window.port.foreColor, other));
}

TEST_F(DialogsPictures, ListStaysLoadedForTheNextTime)
{
    DrawSICN(window, 300, 0, {0, 0});
    const Handle handle = platform.resources.files[1].front().handle;
    ASSERT_NE(handle, nullptr);
    EXPECT_NE(*handle, nullptr);
    DrawSICN(window, 300, 1, {0, 0});
    EXPECT_EQ(platform.resources.files[1].front().handle, handle);
    EXPECT_EQ(platform.handles.blocks.size(), 1u);
}

}   // namespace
