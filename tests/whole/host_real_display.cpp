#include "tests/whole/real_display.h"

#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

namespace host_tests
{

namespace
{

std::string contentOfFile(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

// The server's file begins with a header of 32-bit numbers, the most significant byte first.
enum HeaderField
{
    headerSize = 0,
    pictureWidth = 4,
    pictureHeight = 5,
    bitsPerPixel = 11,
    bytesPerRow = 12,
    colorCount = 19,
    fieldCount = 25
};

std::uint32_t fieldOf(const std::string &bytes, HeaderField field)
{
    std::uint32_t value = 0;
    for (std::size_t index = 0; index < 4; ++index)
        value = value << 8 | static_cast<std::uint8_t>(bytes[4 * static_cast<std::size_t>(field) + index]);
    return value;
}

}   // namespace

bool comesTrue(const std::function<bool()> &condition, int seconds)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

std::string RealDisplay::problem()
{
    for (const char *program : {"Xvfb", "xdotool"})
        if (!support::programExists(program))
            return std::string("there is no ") + program + " here";
    return "";
}

// The server writes its number when it is ready.
RealDisplay::RealDisplay()
{
    const std::string line = "exec Xvfb -displayfd 1 -screen 0 1024x768x24 -nolisten tcp -fbdir " + folder_.path() + " >" +
                             folder_ / "number" + " 2>" + folder_ / "complaints";
    server_.emplace(support::start({"sh", "-c", line}));
    if (comesTrue([&] { return contentOfFile(folder_ / "number").ends_with('\n'); }))
        name_ = ":" + contentOfFile(folder_ / "number");
    while (name_.ends_with('\n'))
        name_.pop_back();
}

std::vector<std::string> RealDisplay::environment() const
{
    return {"DISPLAY=" + name_, "WAYLAND_DISPLAY=", "SDL_VIDEODRIVER=", "DBUS_SESSION_BUS_ADDRESS=disabled:"};
}

void RealDisplay::act(const std::vector<std::string> &words) const
{
    std::vector<std::string> line = {"xdotool"};
    line.insert(line.end(), words.begin(), words.end());
    const support::Ended ended = support::start(line, environment()).wait();
    EXPECT_EQ(ended.status, 0) << ended.output;
}

support::Picture RealDisplay::picture() const
{
    const std::string bytes = contentOfFile(folder_ / "Xvfb_screen0");
    support::Picture picture;
    if (bytes.size() < 4 * fieldCount || fieldOf(bytes, bitsPerPixel) != 32)
        return picture;
    const std::size_t width = fieldOf(bytes, pictureWidth), height = fieldOf(bytes, pictureHeight), row = fieldOf(bytes, bytesPerRow);
    const std::size_t first = fieldOf(bytes, headerSize) + std::size_t{12} * fieldOf(bytes, colorCount);
    if (row < 4 * width || bytes.size() < first + row * height)
        return picture;
    picture.width = static_cast<int>(width);
    picture.height = static_cast<int>(height);
    for (std::size_t v = 0; v < height; ++v)
        for (std::size_t h = 0; h < width; ++h)
        {
            const auto *pixel = reinterpret_cast<const std::uint8_t *>(bytes.data()) + first + v * row + 4 * h;
            picture.pixels.push_back(0xFF000000u | static_cast<std::uint32_t>(pixel[2] << 16 | pixel[1] << 8 | pixel[0]));
        }
    return picture;
}

std::uint32_t RealDisplay::pixelAt(int h, int v) const
{
    const support::Picture shown = picture();
    if (h >= shown.width || v >= shown.height)
        return 0xFFFFFFFF;
    return shown.pixels[static_cast<std::size_t>(v * shown.width + h)] & 0xFFFFFF;
}

}   // namespace host_tests
