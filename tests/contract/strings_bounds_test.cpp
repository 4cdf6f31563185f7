// What the functions must not look at: bytes in front of their arguments and behind them. There the memory ends.

#include "tests/contract/strings_fixture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

namespace
{

// Memory that ends on both sides: reading one byte further ends the program.
class Island
{
public:
    Island()
    {
        void *memory = mmap(nullptr, 3 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED || mprotect(static_cast<unsigned char *>(memory) + page, page, PROT_READ | PROT_WRITE) != 0)
            throw std::bad_alloc();
        beginning = static_cast<unsigned char *>(memory) + page;
    }
    ~Island() { munmap(beginning - page, 3 * page); }
    Island(const Island &) = delete;
    Island &operator=(const Island &) = delete;

    // The bytes at the very end of the memory, or at its very beginning.
    unsigned char *atTheEnd(const std::string &bytes) { return put(beginning + page - bytes.size(), bytes); }
    unsigned char *atTheBeginning(const std::string &bytes) { return put(beginning, bytes); }

private:
    static unsigned char *put(unsigned char *place, const std::string &bytes)
    {
        std::memcpy(place, bytes.data(), bytes.size());
        return place;
    }

    const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    unsigned char *beginning;
};

class StringsBounds : public testing::TestWithParam<int>
{
protected:
    std::string characters(char character) const { return std::string(static_cast<std::size_t>(GetParam()), character); }

    // Does the work on these bytes at either end.
    template <typename Work>
    void atBothEnds(const std::string &bytes, Work work)
    {
        work(island.atTheEnd(bytes));
        work(island.atTheBeginning(bytes));
    }

    PlatformDouble platform;
    Island island, other;
    unsigned char buffer[600] = {};
};

INSTANTIATE_TEST_SUITE_P(Lengths, StringsBounds, testing::Values(0, 1, 2, 7, 8, 9, 15, 16, 17, 33, 254, 255),
                         testing::PrintToStringParamName());

TEST_P(StringsBounds, Copying)
{
    const std::string text = pascal(characters('x'));
    atBothEnds(text, [this](unsigned char *source) { Copy(buffer, source); });
    atBothEnds(text, [this](unsigned char *source) { Copyn(buffer, source, 32767); });
    atBothEnds(text, [this](unsigned char *source) { Concat(buffer, source); });
    atBothEnds(text, [this](unsigned char *source) { Mid(buffer, source, 1, 32767); });
    atBothEnds(text, [this](unsigned char *source) { CopyPtoCstr(reinterpret_cast<char *>(buffer), source); });
    atBothEnds(characters('x') + '\0', [this](unsigned char *source) { CopyCtoPstr(buffer, reinterpret_cast<char *>(source)); });
    EXPECT_EQ(charactersOf(buffer), characters('x'));
}

// A destination that has room for exactly what is to be written.
TEST_P(StringsBounds, Writing)
{
    const std::string text = pascal(characters('x'));
    Buffer source(text);
    atBothEnds(text, [&](unsigned char *destination) { Copy(destination, source.text()); });
    atBothEnds(text, [&](unsigned char *destination) { Copyn(destination, source.text(), 32767); });
    atBothEnds(text, [&](unsigned char *destination) { Mid(destination, source.text(), 1, 32767); });
    atBothEnds(pascal("") + characters('y'), [&](unsigned char *destination) { Concat(destination, source.text()); });
    atBothEnds(characters('y') + '\0',
               [&](unsigned char *destination) { CopyPtoCstr(reinterpret_cast<char *>(destination), source.text()); });
    atBothEnds(text, [&](unsigned char *destination) { CopyCtoPstr(destination, characters('x').c_str()); });
    EXPECT_TRUE(source.isUntouched());
}

TEST_P(StringsBounds, Searching)
{
    const std::string text = pascal(characters('a'));
    Buffer pattern(pascal("ab")), single(pascal("b"));
    atBothEnds(text, [&](unsigned char *source) {
        EXPECT_EQ(Pos('b', source), 0);
        EXPECT_EQ(Posn(single.text(), source), 0);
        EXPECT_EQ(Posn(pattern.text(), source), 0);
        EXPECT_EQ(PosnAt(pattern.text(), source, 0), 0);
        EXPECT_EQ(AllisNum(source), 0);
    });
    Buffer longText(pascal(std::string(255, 'a')));
    atBothEnds(pascal(characters('a') + (GetParam() < 255 ? "b" : "")),
               [&](unsigned char *source) { EXPECT_EQ(Posn(source, longText.text()), GetParam() < 255 ? 0 : 1); });
}

TEST_P(StringsBounds, ComparingStopsAtTheLengths)
{
    const std::string text = pascal(characters('a'));
    const unsigned char *second = other.atTheEnd(text);
    Buffer longer(pascal(std::string(255, 'a')));
    atBothEnds(text, [&](unsigned char *first) {
        EXPECT_EQ(Comp(first, second), 1);
        EXPECT_EQ(Comp(first, longer.text()), GetParam() == 255);
        EXPECT_EQ(Comp(longer.text(), first), GetParam() == 255);
    });
}

TEST_P(StringsBounds, Numbers)
{
    atBothEnds(pascal(characters('7')), [&](unsigned char *text) {
        long value = 0;
        double real = 0;
        EXPECT_EQ(AllisNum(text), GetParam() > 0);
        StringHexToNum(text, &value);
        MyStringToDouble(text, &real);
        EXPECT_EQ(Val(text), static_cast<long>(real));
    });
}

}   // namespace
