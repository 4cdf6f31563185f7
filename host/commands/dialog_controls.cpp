#include "host/commands/dialog_controls.h"

#include <charconv>
#include <sstream>

namespace host
{

namespace
{

class Words
{
public:
    explicit Words(const std::string &row) : row_(row), stream_(row) {}

    bool take(std::string &word) { return static_cast<bool>(stream_ >> word); }

    template <typename Number>
    Number takeNumber()
    {
        std::string word;
        Number number = 0;
        take(word);
        auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (word.empty() || error != std::errc() || end != word.data() + word.size())
            fail("a number that fits is wanted, not: " + word);
        return number;
    }

    [[noreturn]] void fail(const std::string &why) const { throw ControlError("the row \"" + row_ + "\": " + why); }

private:
    std::string row_;
    std::istringstream stream_;
};

void takeDetail(Words &words, const std::string &name, IconControl &control)
{
    if (name == "menu")
        control.menu = words.takeNumber<SInt16>();
    else if (name == "checked")
        control.checkedItem = words.takeNumber<SInt16>();
    else if (name == "delay")
        control.delay = words.takeNumber<SInt16>();
    else if (name == "clear")
        control.clearsMarks = true;
    else if (name == "label")
        control.label = words.takeNumber<SInt16>();
    else if (name == "alert")
        control.alert = words.takeNumber<SInt16>();
    else if (name == "number")
        control.number = words.takeNumber<SInt32>();
    else
        words.fail("it may say menu, checked, delay, clear, label, alert and number, not: " + name);
}

UInt8 byteAt(const std::string &bytes, std::size_t place)
{
    if (place >= bytes.size())
        throw ControlError("the list of strings is damaged");
    return static_cast<UInt8>(bytes[place]);
}

}   // namespace

IconControl controlFromRow(const std::string &row)
{
    Words words(row);
    IconControl control;
    std::string word;
    control.item = words.takeNumber<SInt16>();
    if (!words.take(word) || (word != "button" && word != "small"))
        words.fail("after the item's number comes button or small");
    control.isSmall = word == "small";
    control.icon = words.takeNumber<SInt16>();
    while (words.take(word))
        takeDetail(words, word, control);
    return control;
}

std::vector<std::string> rowsOf(const std::string &bytes)
{
    std::vector<std::string> rows;
    std::size_t place = 2;
    for (int count = byteAt(bytes, 0) << 8 | byteAt(bytes, 1); count > 0; --count)
    {
        const std::size_t length = byteAt(bytes, place);
        if (length > 0)
            byteAt(bytes, place + length);
        rows.push_back(bytes.substr(place + 1, length));
        place += 1 + length;
    }
    return rows;
}

}   // namespace host
