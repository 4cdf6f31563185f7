// What tests of windows, dialogs and menus share: a scripted screen, the bytes of resources, and the screen's pictures.
#pragma once

#include "standin/screen.h"
#include "tests/standin/disks.h"
#include "tests/standin/pictures.h"
#include "tests/standin/resource_bytes.h"

#include <string>
#include <vector>

namespace support
{

// Makes the test fail if the script is none.
void useScript(const std::string &script);

struct TestItem
{
    DialogItemType type;
    Rect box;
    std::string text;   // of an icon or a picture: the two bytes of its ID
};

Bytes itemList(const std::vector<TestItem> &items);

struct TestMenuItem
{
    std::string text;
    UInt8 mark = 0;
};

Bytes menuBytes(MenuID id, const std::vector<TestMenuItem> &items, UInt32 enableFlags = 0xFFFFFFFF);
Bytes alertBytes(const Rect &bounds, SInt16 items);
Bytes dialogBytes(const Rect &bounds, SInt16 items, const std::string &title, bool goesAway = true);

// A handle with these bytes, disposed of with this.
class TestHandle
{
public:
    explicit TestHandle(const Bytes &bytes);
    ~TestHandle() { DisposeHandle(handle_); }
    TestHandle(const TestHandle &) = delete;
    TestHandle &operator=(const TestHandle &) = delete;
    operator Handle() const { return handle_; }

private:
    Handle handle_;
};

// A dialog of these items at 40, 30 on the screen, not shown, disposed of with this.
class TestDialog
{
public:
    TestDialog(const std::vector<TestItem> &items, SInt16 width, SInt16 height);
    ~TestDialog() { DisposeDialog(dialog_); }
    TestDialog(const TestDialog &) = delete;
    TestDialog &operator=(const TestDialog &) = delete;
    operator DialogRef() const { return dialog_; }

private:
    DialogRef dialog_;
};

// Whether a picture of the screen that a script saved shows what tests/data/pictures/NAME.png does.
testing::AssertionResult screenLooksLike(const std::string &file, const std::string &name);

// A length-prefixed text as it is passed to calls.
struct Pascal
{
    explicit Pascal(const std::string &characters);
    operator ConstStr255Param() const { return text; }
    Str255 text{};
};

std::string textOfPascal(ConstStr255Param text);

// A test with a resource file of its own open.
class InterfaceTest : public testing::Test
{
protected:
    void openResources(const std::vector<TestResource> &resources);
    std::string path(const std::string &name) const { return folder_ / name; }
    void TearDown() override;

private:
    TemporaryFolder folder_;
    SInt16 resources_ = -1;
    int files_ = 0;
};

}   // namespace support
