#include "tests/standin/pictures.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <png.h>

namespace support
{

namespace
{

using standin::Pixel;

char letterOf(Pixel pixel)
{
    switch (pixel)
    {
    case 0xFF000000: return '#';
    case 0xFFFFFFFF: return '.';
    case 0xFFFF0000: return 'r';
    case 0xFF00FF00: return 'g';
    case 0xFF0000FF: return 'b';
    default: return '?';
    }
}

std::filesystem::path storedPath(const std::string &name)
{
    return std::filesystem::path(ZERB_TEST_DATA) / "pictures" / (name + ".png");
}

// Asked before the tests take mounts of their own: afterwards the path that Linux tells may lead nowhere.
const std::filesystem::path failedPictures = std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "pictures";

std::filesystem::path failedPath(const std::string &name)
{
    std::filesystem::create_directories(failedPictures);
    return failedPictures / name;
}

Picture differencesOf(const Picture &drawn, const Picture &stored)
{
    Picture differences = drawn;
    for (std::size_t index = 0; index < drawn.pixels.size(); ++index)
        differences.pixels[index] =
            drawn.pixels[index] != stored.pixels[index] ? 0xFFFF0000 : 0xFF808080 | (drawn.pixels[index] >> 1 & 0x7F7F7F);
    return differences;
}

testing::AssertionResult differentPixels(const Picture &drawn, const Picture &stored, const std::string &name)
{
    const auto first = std::mismatch(drawn.pixels.begin(), drawn.pixels.end(), stored.pixels.begin()).first - drawn.pixels.begin();
    const Picture differences = differencesOf(drawn, stored);
    const auto count = std::count(differences.pixels.begin(), differences.pixels.end(), Pixel{0xFFFF0000});
    writePicture(differences, failedPath(name + ".differences.png"));
    return testing::AssertionFailure() << count << " pixels differ from " << storedPath(name) << ", the first at column "
                                       << first % drawn.width << " of row " << first / drawn.width << "; see "
                                       << failedPath(name + ".drawn.png") << " and " << failedPath(name + ".differences.png");
}

testing::AssertionResult storedAnew(const Picture &drawn, const std::string &name)
{
    if (!writePicture(drawn, storedPath(name)))
        return testing::AssertionFailure() << storedPath(name) << " cannot be written";
    [&] { GTEST_SKIP() << storedPath(name) << " is new: look at it before you keep it"; }();
    return testing::AssertionSuccess();
}

}   // namespace

std::string rowsOf(GrafPtr port)
{
    std::string rows;
    const Picture picture = pictureOf(port);
    for (std::size_t index = 0; index < picture.pixels.size(); ++index)
    {
        rows += letterOf(picture.pixels[index]);
        if ((index + 1) % static_cast<std::size_t>(picture.width) == 0)
            rows += '\n';
    }
    return rows;
}

Picture pictureOf(GrafPtr port)
{
    return {port->bounds.right - port->bounds.left, port->bounds.bottom - port->bounds.top, port->pixels};
}

Picture readPicture(const std::string &path)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0)
        return {};
    image.format = PNG_FORMAT_RGB;
    std::vector<unsigned char> rows(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, rows.data(), 0, nullptr) == 0)
        return {};
    Picture picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    for (std::size_t index = 0; index < rows.size(); index += 3)
        picture.pixels.push_back(0xFF000000 | Pixel{rows[index]} << 16 | Pixel{rows[index + 1]} << 8 | rows[index + 2]);
    return picture;
}

bool writePicture(const Picture &picture, const std::string &path)
{
    std::vector<unsigned char> rows;
    for (Pixel pixel : picture.pixels)
        for (int shift : {16, 8, 0})
            rows.push_back(static_cast<unsigned char>(pixel >> shift));
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    return png_image_write_to_file(&image, path.c_str(), 0, rows.data(), 0, nullptr) != 0;
}

testing::AssertionResult looksLike(GrafPtr port, const std::string &name)
{
    return looksLike(pictureOf(port), name);
}

testing::AssertionResult looksLike(const Picture &drawn, const std::string &name)
{
    if (!std::filesystem::exists(storedPath(name)))
        return std::getenv("ZERB_NEW_PICTURES") != nullptr
                   ? storedAnew(drawn, name)
                   : testing::AssertionFailure() << "there is no " << storedPath(name) << "; with ZERB_NEW_PICTURES set it is made";
    const Picture stored = readPicture(storedPath(name));
    if (drawn.width == stored.width && drawn.height == stored.height && drawn.pixels == stored.pixels)
        return testing::AssertionSuccess();
    writePicture(drawn, failedPath(name + ".drawn.png"));
    if (drawn.width == stored.width && drawn.height == stored.height)
        return differentPixels(drawn, stored, name);
    return testing::AssertionFailure() << storedPath(name) << " is " << stored.width << " by " << stored.height
                                       << " pixels, what was drawn " << drawn.width << " by " << drawn.height << "; see "
                                       << failedPath(name + ".drawn.png");
}

}   // namespace support
