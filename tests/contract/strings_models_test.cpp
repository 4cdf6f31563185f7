// The number conversions against their models, which calculate exactly and in other words: on very many values, always
// the same ones, drawn so that the odd corners are many among them.

#include "tests/contract/strings_fixture.h"
#include "tests/models/number_models.h"
#include "tests/how_built.h"

#include <bit>
#include <cmath>
#include <random>
#include <vector>

namespace
{

// Of each kind: four hundred thousand in all where that takes seconds, fewer in a build that is slow on purpose or emulated.
const int samples = hasLongRuns() ? 100000 : 8000;

class StringsModels : public testing::Test
{
protected:
    std::uint64_t below(std::uint64_t limit) { return random() % limit; }

    double signedAtRandom(double value) { return random() % 2 == 0 ? value : -value; }

    // One of the values next to this one, or itself.
    double nudged(double value)
    {
        for (std::uint64_t steps = below(3); steps > 0; --steps)
            value = std::nextafter(value, random() % 2 == 0 ? 1e300 : -1e300);
        return value;
    }

    double anyFiniteValue()
    {
        const double value = std::bit_cast<double>(random());
        return std::isfinite(value) ? value : 0.25;
    }

    // What people write: so many units of some decimal place.
    double decimalValue()
    {
        return static_cast<double>(below(std::uint64_t{1} << below(48))) / std::pow(10.0, static_cast<double>(below(10)));
    }

    double value()
    {
        switch (below(7))
        {
        case 0: return anyFiniteValue();
        case 1: return signedAtRandom(decimalValue());
        case 2: return signedAtRandom(nudged(decimalValue()));
        case 3: return signedAtRandom(nudged(static_cast<double>(below(1 << 20)) / 2));
        case 4: return signedAtRandom(nudged(std::ldexp(static_cast<double>(below(1 << 25)), static_cast<int>(below(12)) - 4)));
        case 5: return signedAtRandom(nudged(static_cast<double>(below(std::uint64_t{1} << 33)) / 2));
        default: return signedAtRandom(nudged(2147483648.0 - static_cast<double>(below(2000)) / 4 + 250));
        }
    }

    std::string textOf(const std::string &characters, std::uint64_t greatestLength)
    {
        std::string text;
        for (std::uint64_t length = below(greatestLength + 1); length > 0; --length)
            text += characters[static_cast<std::size_t>(below(characters.size()))];
        return text;
    }

    void compareText(double value, short decimals)
    {
        unsigned char text[256];
        MyDoubleToString(text, value, decimals);
        platform.forgetCalls();
        ASSERT_EQ(charactersOf(text), modelOfDoubleToString(value, decimals)) << testing::PrintToString(value) << " with " << decimals;
    }

    void compareValue(const std::string &text)
    {
        double value = 0;
        MyStringToDouble(Buffer(pascal(text)).text(), &value);
        platform.forgetCalls();
        ASSERT_TRUE(ExactNumber(value) == modelOfStringToDouble(text)) << text << " is not " << testing::PrintToString(value);
    }

    std::mt19937_64 random{1984};
    PlatformDouble platform;
};

// Everything at which some rule changes, and its neighbours on both sides.
std::vector<double> boundaryValues()
{
    std::vector<double> values;
    for (const double value : {0.0,
                               1e-7,
                               0.1,
                               0.25,
                               0.29,
                               0.49999997,
                               0.5,
                               0.9999999,
                               0.99999995,
                               1.0,
                               1.5,
                               2.4,
                               2.5,
                               8388607.5,
                               8388608.0,
                               8388608.5,
                               16777215.0,
                               16777215.5,
                               16777216.0,
                               16777217.0,
                               16777217.5,
                               16777218.0,
                               16777219.0,
                               2147483520.0,
                               2147483584.0,
                               2147483646.0,
                               2147483647.0,
                               2147483647.5,
                               2147483648.0,
                               2147483649.0,
                               2147483776.0,
                               2147483904.0,
                               4294967295.0,
                               4294967296.0,
                               1e10,
                               1e38,
                               3.4028234663852886e38,
                               3.4028235677973366e38,
                               1e300,
                               1.7976931348623157e308,
                               5e-324,
                               2.2250738585072014e-308,
                               1e-46,
                               7.0064923216240854e-46,
                               1.1754943508222875e-38})
    {
        for (const double sign : {1.0, -1.0})
        {
            for (const double near : {value, std::nextafter(value, 0.0), std::nextafter(value, 1.7976931348623157e308)})
                values.push_back(sign * near);
        }
    }
    return values;
}

TEST_F(StringsModels, DoubleToLong)
{
    for (const double boundary : boundaryValues())
        ASSERT_EQ(DoubleToLong(boundary), modelOfDoubleToLong(boundary)) << testing::PrintToString(boundary);
    for (int sample = 0; sample < samples; ++sample)
    {
        const double any = value();
        ASSERT_EQ(DoubleToLong(any), modelOfDoubleToLong(any)) << testing::PrintToString(any);
    }
}

TEST_F(StringsModels, StringHexToNum)
{
    for (int sample = 0; sample < samples; ++sample)
    {
        const std::string text =
            textOf(sample % 4 == 0 ? "0123456789abcdefABCDEF$xgG@`/:" : "0123456789abcdefABCDEF", sample % 8 == 0 ? 255 : 26);
        long value = 0;
        StringHexToNum(Buffer(pascal(text)).text(), &value);
        ASSERT_EQ(value, modelOfHexToNumber(text)) << text;
    }
}

TEST_F(StringsModels, MyDoubleToString)
{
    for (const double boundary : boundaryValues())
    {
        for (short decimals = -1; decimals <= 33; ++decimals)
            compareText(boundary, decimals);
    }
    for (int sample = 0; sample < samples && !HasFatalFailure(); ++sample)
        compareText(value(), static_cast<short>(sample % 16 == 0 ? below(34) : below(10)));
}

TEST_F(StringsModels, MyStringToDouble)
{
    for (int sample = 0; sample < samples && !HasFatalFailure(); ++sample)
    {
        switch (sample % 4)
        {
        case 0: compareValue(textOf("0123456789-.,+ e$", 14)); break;
        case 1: compareValue(textOf("0123456789", 10) + '.' + textOf("0123456789", 9)); break;
        case 2: compareValue('-' + textOf("0123456789", 10) + ',' + textOf("0123456789", 9)); break;
        default: compareValue(textOf("0123456789-.,", 31)); break;
        }
    }
}

// There and back: what is written with enough decimals is read as the same number, but for the cut-off part.
TEST_F(StringsModels, NumbersThereAndBack)
{
    for (int sample = 0; sample < samples; ++sample)
    {
        const std::int32_t number = static_cast<std::int32_t>(static_cast<std::uint32_t>(random()) >> below(32));
        unsigned char text[256];
        Str(text, number);
        ASSERT_EQ(charactersOf(text), std::to_string(number));
        ASSERT_EQ(Val(text), number);
        ASSERT_EQ(modelOfNumberFromText(charactersOf(text)), number);
        platform.forgetCalls();
    }
}

// The exact numbers themselves, where the processor's own arithmetic can say what is right.
TEST_F(StringsModels, ExactNumbersAgreeWithIeeeArithmetic)
{
    for (int sample = 0; sample < samples; ++sample)
    {
        const double a = value(), b = sample % 2 == 0 ? value() : a * (1 + std::ldexp(static_cast<double>(below(100)), -50));
        const ExactNumber exactA(a), exactB(b);
        if (std::isfinite(a + b))
        {
            ASSERT_TRUE((exactA + exactB).rounded(doublePrecision) == ExactNumber(a + b)) << a << " + " << b;
        }
        if (std::isfinite(a * b))
        {
            ASSERT_TRUE((exactA * exactB).rounded(doublePrecision) == ExactNumber(a * b)) << a << " * " << b;
        }
        if (std::isfinite(static_cast<float>(a)))
        {
            ASSERT_TRUE(exactA.rounded(singlePrecision) == ExactNumber(static_cast<float>(a))) << a;
        }
        const std::int64_t numerator = static_cast<std::int32_t>(random()), denominator = static_cast<std::int32_t>(random() | 1);
        ASSERT_TRUE(ExactNumber::quotient(numerator, denominator, doublePrecision) ==
                    ExactNumber(static_cast<double>(numerator) / static_cast<double>(denominator)))
            << numerator << " / " << denominator;
    }
}

}   // namespace
