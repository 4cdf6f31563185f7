// Ports that are saved as PNG files, and the comparing of stored pictures itself.
#include "standin/screen.h"
#include "tests/standin/disks.h"
#include "tests/standin/processes.h"
#include "tests/standin/test_port.h"

#include <cstdlib>
#include <filesystem>

namespace
{

using standin::savePicture;
using support::readPicture;
using support::TemporaryFolder;
using support::TestPort;

constexpr RGBColor red = {0xFFFF, 0x1234, 0};

std::size_t filesIn(const TemporaryFolder &folder)
{
    const std::filesystem::directory_iterator files(folder.path());
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

TEST(DrawingPictures, HaveEveryPixel)
{
    const TemporaryFolder folder;
    TestPort port(Rect{-1, -2, 2, 3});
    RGBForeColor(&red);
    MoveTo(-2, -1);
    LineTo(0, 1);
    ASSERT_EQ(savePicture(port, folder / "picture.png"), noErr);
    const support::Picture picture = readPicture(folder / "picture.png");
    EXPECT_EQ(picture.width, 5);
    EXPECT_EQ(picture.height, 3);
    EXPECT_EQ(picture.pixels, port->pixels);
    EXPECT_EQ(picture.pixels[0], 0xFFFF1200);
    EXPECT_EQ(filesIn(folder), 1U);
}

TEST(DrawingPictures, AreEnlargedPixelByPixel)
{
    const TemporaryFolder folder;
    TestPort port(4, 3);
    RGBForeColor(&red);
    MoveTo(1, 0);
    LineTo(3, 2);
    ASSERT_EQ(savePicture(port, folder / "picture.png", 5), noErr);
    const support::Picture picture = readPicture(folder / "picture.png");
    ASSERT_EQ(picture.width, 20);
    ASSERT_EQ(picture.height, 15);
    for (int v = 0; v < 15; ++v)
        for (int h = 0; h < 20; ++h)
            ASSERT_EQ(picture.pixels[static_cast<std::size_t>(v * 20 + h)], *(port->pixels.data() + v / 5 * 4 + h / 5)) << h << ", " << v;
}

TEST(DrawingPictures, ReplaceAnEarlierFile)
{
    const TemporaryFolder folder;
    TestPort port(4, 3);
    support::writeFile(folder / "picture.png", std::string(100000, 'x'));
    ASSERT_EQ(savePicture(port, folder / "picture.png"), noErr);
    EXPECT_EQ(readPicture(folder / "picture.png").pixels, port->pixels);
    EXPECT_EQ(filesIn(folder), 1U);
}

TEST(DrawingPictures, ThatCannotBeSavedLeaveNothing)
{
    const TemporaryFolder folder;
    TestPort port(4, 3);
    EXPECT_EQ(savePicture(port, folder / "none/picture.png"), fnfErr);
    EXPECT_EQ(savePicture(nullptr, folder / "picture.png"), paramErr);
    for (const std::string &path : {std::string(), std::string("."), folder.path() + "/", folder / "..", folder / std::string("a\0b", 3)})
        EXPECT_EQ(savePicture(port, path), paramErr) << path;
    for (int scale : {0, -1, 2310, 100000, 2147483647, -2147483647})
        EXPECT_EQ(savePicture(port, folder / "picture.png", scale), paramErr) << scale;
    std::filesystem::create_directory(folder / "folder");
    support::writeFile(folder / "folder/file", "");
    EXPECT_NE(savePicture(port, folder / "folder"), noErr);
    EXPECT_EQ(filesIn(folder), 1U);
}

const support::Role savesPicture("savesPicture", [](const support::RoleArguments &arguments) {
    std::filesystem::current_path(arguments[0]);
    TestPort port(2, 2);
    EXPECT_EQ(savePicture(port, "relative.png"), noErr);
});

TEST(DrawingPictures, MayBeNamedFromTheCurrentDirectory)
{
    const TemporaryFolder folder;
    support::playRole("savesPicture", {folder.path()});
    EXPECT_EQ(readPicture(folder / "relative.png").width, 2);
}

// If this comparison could not fail, none with a stored picture could.
TEST(DrawingPictures, ThatDifferInOnePixelAreNotAlike)
{
    if (std::getenv("ZERB_NEW_PICTURES") != nullptr)
        GTEST_SKIP() << "ZERB_NEW_PICTURES is set, and a picture that is missing would be made";
    TestPort port(64, 48);
    const testing::AssertionResult result = support::looksLike(port, "frames_and_pens");
    EXPECT_FALSE(result);
    EXPECT_NE(std::string(result.message()).find("the first at column 2 of row 2"), std::string::npos) << result.message();
    TestPort small(3, 3);
    EXPECT_FALSE(support::looksLike(small, "frames_and_pens"));
    EXPECT_FALSE(support::looksLike(small, "no_such_picture"));
}

}   // namespace
