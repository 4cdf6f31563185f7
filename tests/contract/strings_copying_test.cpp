// Copying, joining and cutting of strings: which bytes arrive, and which are left alone.

#include "tests/contract/strings_fixture.h"

namespace
{

TEST(StringsCopying, CStringArrivesWithItsLength)
{
    for (const std::size_t count : {0u, 1u, 2u, 7u, 8u, 31u, 32u, 254u, 255u})
    {
        SCOPED_TRACE(count);
        const std::string characters = variedCharacters(count);
        Buffer destination;
        CopyCtoPstr(destination.text(), characters.c_str());
        EXPECT_TRUE(destination.holds(pascal(characters)));
    }
}

TEST(StringsCopying, LengthOfACStringWrapsAt256)
{
    for (const std::size_t count : {256u, 257u, 300u, 511u, 512u, 513u, 1000u})
    {
        SCOPED_TRACE(count);
        const std::string characters = variedCharacters(count);
        Buffer destination;
        CopyCtoPstr(destination.text(), characters.c_str());
        EXPECT_TRUE(destination.holds(pascal(characters.substr(0, count % 256))));
    }
    Buffer destination;
    CopyCtoPstr(destination.text(), std::string(300, 'x').c_str());
    EXPECT_TRUE(destination.holds(pascal(std::string(44, 'x'))));
}

TEST(StringsCopying, PascalStringArrivesWithAZeroBehindIt)
{
    for (const std::size_t count : {0u, 1u, 2u, 7u, 8u, 31u, 32u, 254u, 255u})
    {
        SCOPED_TRACE(count);
        const std::string characters = variedCharacters(count);
        Buffer destination, source(pascal(characters));
        CopyPtoCstr(destination.characters(), source.text());
        EXPECT_TRUE(destination.holds(characters + '\0'));
        EXPECT_TRUE(source.isUntouched());
    }
}

TEST(StringsCopying, ZeroAmongTheCharactersMakesAllThatFollowsZero)
{
    using namespace std::string_literals;
    Buffer destination, source(pascal("ab\0cd\0e"s));
    CopyPtoCstr(destination.characters(), source.text());
    EXPECT_TRUE(destination.holds("ab\0\0\0\0\0\0"s));
    EXPECT_TRUE(source.isUntouched());
}

TEST(StringsCopying, PascalStringBecomesACStringInPlace)
{
    using namespace std::string_literals;
    Buffer buffer(pascal("hello"));
    CopyPtoCstr(buffer.characters(), buffer.text());
    EXPECT_TRUE(buffer.holds("hello\0"s));
    Buffer withZero(pascal("he\0lo"s));
    CopyPtoCstr(withZero.characters(), withZero.text());
    EXPECT_TRUE(withZero.holds("he\0\0\0\0"s));
}

TEST(StringsCopying, CopyTakesLengthAndCharactersAndNothingElse)
{
    for (std::size_t count = 0; count <= 255; ++count)
    {
        SCOPED_TRACE(count);
        const std::string characters = variedCharacters(count);
        Buffer destination, source(pascal(characters));
        Copy(destination.text(), source.text());
        EXPECT_TRUE(destination.holds(pascal(characters)));
        EXPECT_TRUE(source.isUntouched());
    }
}

TEST(StringsCopying, CopyTakesZerosLikeAnyOtherCharacter)
{
    const std::string characters("a\0b\0", 4);
    Buffer destination, source(pascal(characters));
    Copy(destination.text(), source.text());
    EXPECT_TRUE(destination.holds(pascal(characters)));
}

struct CopynCase
{
    const char *name, *source;
    short count;
    std::string bytes;
};

class StringsCopyn : public testing::TestWithParam<CopynCase>
{
};

// A count that is not above zero leaves the characters alone and stores its low byte as the length.
INSTANTIATE_TEST_SUITE_P(
    Rows, StringsCopyn,
    testing::Values(CopynCase{"Prefix", "hello", 3, pascal("hel")}, CopynCase{"WholeText", "hello", 5, pascal("hello")},
                    CopynCase{"MoreThanThereIs", "hello", 10, pascal("hello")}, CopynCase{"LargestCount", "hello", 32767, pascal("hello")},
                    CopynCase{"OneCharacter", "hello", 1, pascal("h")}, CopynCase{"None", "hello", 0, {"\0", 1}},
                    CopynCase{"OfTheEmptyString", "", 3, {"\0", 1}}, CopynCase{"NoneOfTheEmptyString", "", 0, {"\0", 1}},
                    CopynCase{"MinusOneGivesLength255", "hello", -1, "\xFF"}, CopynCase{"MinusTwoGivesLength254", "hello", -2, "\xFE"},
                    CopynCase{"Minus256GivesLength0", "hello", -256, {"\0", 1}}, CopynCase{"Minus255GivesLength1", "hello", -255, "\x01"},
                    CopynCase{"SmallestCountGivesLength0", "hello", -32768, {"\0", 1}},
                    CopynCase{"MinusOneOfTheEmptyString", "", -1, "\xFF"}),
    rowName);

TEST_P(StringsCopyn, Row)
{
    Buffer destination, source(pascal(GetParam().source));
    Copyn(destination.text(), source.text(), GetParam().count);
    EXPECT_TRUE(destination.holds(GetParam().bytes));
    EXPECT_TRUE(source.isUntouched());
}

TEST(StringsCopyn, LengthsFromNoneToAllOfALongText)
{
    const std::string characters = variedCharacters(255);
    for (short count = 0; count <= 300; ++count)
    {
        SCOPED_TRACE(count);
        Buffer destination, source(pascal(characters));
        Copyn(destination.text(), source.text(), count);
        EXPECT_TRUE(destination.holds(pascal(characters.substr(0, static_cast<std::size_t>(count)))));
    }
}

TEST(StringsConcat, SecondTextFollowsTheFirst)
{
    Buffer destination(pascal("foo")), source(pascal("bar"));
    Concat(destination.text(), source.text());
    EXPECT_TRUE(destination.holds(pascal("foobar")));
    EXPECT_TRUE(source.isUntouched());
}

TEST(StringsConcat, EmptyTextsOnEitherSide)
{
    Buffer destination(pascal("foo")), empty(pascal("")), source(pascal("bar"));
    Concat(destination.text(), empty.text());
    EXPECT_TRUE(destination.holds(pascal("foo")));
    Concat(empty.text(), source.text());
    EXPECT_TRUE(empty.holds(pascal("bar")));
}

TEST(StringsConcat, ToItself)
{
    Buffer buffer(pascal("abc"));
    Concat(buffer.text(), buffer.text());
    EXPECT_TRUE(buffer.holds(pascal("abcabc")));
}

// The length wraps, but every character is stored: up to index 510.
TEST(StringsConcat, CharactersAreStoredBeyond255AndTheLengthWraps)
{
    for (const auto &[first, second] : {std::pair{200u, 100u}, {255u, 0u}, {255u, 1u}, {1u, 255u}, {255u, 255u}, {128u, 128u}})
    {
        SCOPED_TRACE(testing::Message() << first << " and " << second);
        const std::string front = variedCharacters(first), back(second, 'b');
        Buffer destination(pascal(front)), source(pascal(back));
        Concat(destination.text(), source.text());
        EXPECT_TRUE(destination.holds(pascal(front + back))) << "the length that pascal() stores wraps too";
        EXPECT_EQ(destination.text()[0], (first + second) % 256);
    }
    Buffer destination(pascal(std::string(200, 'a'))), source(pascal(std::string(100, 'b')));
    Concat(destination.text(), source.text());
    EXPECT_EQ(destination.text()[0], 44);
}

struct MidCase
{
    const char *name, *source;
    short start, count;
    std::string characters;
};

class StringsMid : public testing::TestWithParam<MidCase>
{
};

INSTANTIATE_TEST_SUITE_P(Rows, StringsMid,
                         testing::Values(MidCase{"Middle", "hello", 2, 3, "ell"}, MidCase{"CutAtTheEnd", "hello", 4, 10, "lo"},
                                         MidCase{"WholeText", "hello", 1, 5, "hello"}, MidCase{"LastCharacter", "hello", 5, 1, "o"},
                                         MidCase{"LargestCount", "hello", 3, 32767, "llo"}, MidCase{"StartBehindTheEnd", "hello", 6, 1, ""},
                                         MidCase{"StartFarBehindTheEnd", "hello", 32767, 32767, ""}, MidCase{"NoCount", "hello", 2, 0, ""},
                                         MidCase{"NegativeCount", "hello", 2, -1, ""}, MidCase{"SmallestCount", "hello", 2, -32768, ""},
                                         MidCase{"OfTheEmptyString", "", 1, 1, ""},
                                         MidCase{"StartAtTheLengthByte", "ABC", 0, 3,
                                                 "\x03"
                                                 "AB"},
                                         MidCase{"LengthByteAlone", "ABC", 0, 1, "\x03"},
                                         MidCase{"LengthByteAndAll", "ABC", 0, 99,
                                                 "\x03"
                                                 "ABC"},
                                         MidCase{"LengthByteOfTheEmptyString", "", 0, 5, std::string(1, '\0')}),
                         rowName);

TEST_P(StringsMid, Row)
{
    Buffer destination, source(pascal(GetParam().source));
    Mid(destination.text(), source.text(), GetParam().start, GetParam().count);
    EXPECT_TRUE(destination.holds(pascal(GetParam().characters)));
    EXPECT_TRUE(source.isUntouched());
}

TEST(StringsMid, EveryStartAndCountOfALongText)
{
    const std::string characters = variedCharacters(255);
    for (short start = 1; start <= 256; start = static_cast<short>(start + 5))
    {
        for (short count = 0; count <= 260; ++count)
        {
            Buffer destination, source(pascal(characters));
            Mid(destination.text(), source.text(), start, count);
            const std::string expected = characters.substr(static_cast<std::size_t>(start - 1), static_cast<std::size_t>(count));
            ASSERT_TRUE(destination.holds(pascal(expected))) << "from " << start << " for " << count;
        }
    }
}

TEST(StringsMid, StartBelowTheLengthByteTakesWhatLiesThere)
{
    Buffer destination, source(pascal("ABC"));
    const std::string before(reinterpret_cast<const char *>(source.text() - 2), 2);
    Mid(destination.text(), source.text(), -2, 5);
    EXPECT_TRUE(destination.holds(pascal(before + "\x03"
                                                  "AB")));
}

// From 200 bytes in front of a text of 255 there are 456 bytes up to its end.
TEST(StringsMid, MoreThan255CharactersAreStoredAndTheLengthWraps)
{
    Buffer destination, source(pascal(variedCharacters(255)));
    const std::string bytes(reinterpret_cast<const char *>(source.text() - 200), 456);
    Mid(destination.text(), source.text(), -200, 32767);
    EXPECT_TRUE(destination.holds(pascal(bytes)));
    EXPECT_EQ(destination.text()[0], 456 - 256);

    Buffer exactly256;
    Mid(exactly256.text(), source.text(), -200, 256);
    EXPECT_TRUE(exactly256.holds(pascal(bytes.substr(0, 256))));
    EXPECT_EQ(exactly256.text()[0], 0);
}

// The length is cleared before the source's, which is the same byte, is looked at.
TEST(StringsMid, OntoItselfGivesTheEmptyString)
{
    for (const short start : std::initializer_list<short>{1, 2, 5, 300})
    {
        Buffer buffer(pascal("hello"));
        Mid(buffer.text(), buffer.text(), start, 3);
        EXPECT_TRUE(buffer.holds({"\0", 1})) << start;
    }
}

}   // namespace
