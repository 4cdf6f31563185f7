#include "tests/standin/interface_scenes.h"

#include <cstring>

namespace support
{

namespace
{

void append(Bytes &bytes, std::uint32_t value, int width)
{
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

void append(Bytes &bytes, const Rect &rect)
{
    for (SInt16 edge : {rect.top, rect.left, rect.bottom, rect.right})
        append(bytes, static_cast<UInt16>(edge), 2);
}

void append(Bytes &bytes, const std::string &text)
{
    append(bytes, static_cast<std::uint32_t>(text.size()), 1);
    bytes.insert(bytes.end(), text.begin(), text.end());
}

}   // namespace

void useScript(const std::string &script)
{
    EXPECT_EQ(standin::useScriptedScreen(script), "");
}

Bytes itemList(const std::vector<TestItem> &items)
{
    Bytes bytes;
    append(bytes, static_cast<std::uint32_t>(items.size() - 1), 2);
    for (const TestItem &item : items)
    {
        append(bytes, 0, 4);
        append(bytes, item.box);
        append(bytes, static_cast<std::uint32_t>(item.type), 1);
        append(bytes, item.text);
        if (bytes.size() % 2 != 0)
            append(bytes, 0, 1);
    }
    return bytes;
}

Bytes menuBytes(MenuID id, const std::vector<TestMenuItem> &items, UInt32 enableFlags)
{
    Bytes bytes;
    append(bytes, static_cast<UInt16>(id), 2);
    append(bytes, 0, 4);
    append(bytes, 0, 4);
    append(bytes, enableFlags, 4);
    append(bytes, std::string("Title"));
    for (const TestMenuItem &item : items)
    {
        append(bytes, item.text);
        append(bytes, 0, 2);
        append(bytes, item.mark, 1);
        append(bytes, 0, 1);
    }
    append(bytes, 0, 1);
    return bytes;
}

Bytes alertBytes(const Rect &bounds, SInt16 items)
{
    Bytes bytes;
    append(bytes, bounds);
    append(bytes, static_cast<UInt16>(items), 2);
    append(bytes, 0x5555, 2);
    return bytes;
}

Bytes dialogBytes(const Rect &bounds, SInt16 items, const std::string &title, bool goesAway)
{
    Bytes bytes;
    append(bytes, bounds);
    append(bytes, 4, 2);
    append(bytes, 0x0100, 2);
    append(bytes, goesAway ? 0x0100 : 0, 2);
    append(bytes, 0x12345678, 4);
    append(bytes, static_cast<UInt16>(items), 2);
    append(bytes, title);
    return bytes;
}

TestHandle::TestHandle(const Bytes &bytes) : handle_(NewHandle(0))
{
    EXPECT_EQ(PtrAndHand(bytes.data(), handle_, static_cast<long>(bytes.size())), noErr);
}

TestDialog::TestDialog(const std::vector<TestItem> &items, SInt16 width, SInt16 height)
{
    const TestHandle list(itemList(items));
    const Rect bounds = {30, 40, static_cast<SInt16>(30 + height), static_cast<SInt16>(40 + width)};
    dialog_ = NewDialog(nullptr, &bounds, Pascal("Test"), false, 4, nullptr, true, 0, list);
    EXPECT_NE(dialog_, nullptr);
}

testing::AssertionResult screenLooksLike(const std::string &file, const std::string &name)
{
    const Picture picture = readPicture(file);
    if (picture.pixels.empty())
        return testing::AssertionFailure() << "the script saved no picture " << file;
    return looksLike(picture, name);
}

Pascal::Pascal(const std::string &characters)
{
    text[0] = static_cast<unsigned char>(characters.size());
    std::memcpy(text + 1, characters.data(), characters.size());
}

std::string textOfPascal(ConstStr255Param text)
{
    return {reinterpret_cast<const char *>(text + 1), text[0]};
}

void InterfaceTest::openResources(const std::vector<TestResource> &resources)
{
    const FSRef file = fileWithData(folder_, "resources" + std::to_string(++files_), resourceFork(resources));
    resources_ = FSOpenResFile(&file, fsRdPerm);
    ASSERT_EQ(ResError(), noErr);
}

void InterfaceTest::TearDown()
{
    if (resources_ != -1)
        CloseResFile(resources_);
}

}   // namespace support
