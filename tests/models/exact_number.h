// Numbers without rounding: a whole number of any size times a power of two. Every finite floating-point value is one.
//
// The models of the number conversions calculate with these, rounding only where their rules say so.

#pragma once

#include <cstdint>
#include <vector>

// A floating-point format, by the size of its significand and the exponent of its smallest bit. Its range has no upper
// end here.
struct RoundingFormat
{
    int significandBits, smallestExponent;
};

constexpr RoundingFormat singlePrecision = {24, -149};
constexpr RoundingFormat doublePrecision = {53, -1074};

class ExactNumber
{
public:
    explicit ExactNumber(double finiteValue);

    // numerator / denominator, rounded once; the denominator is not 0.
    static ExactNumber quotient(std::int64_t numerator, std::int64_t denominator, RoundingFormat format);

    bool isNegative() const { return negative; }
    ExactNumber negated() const;
    ExactNumber operator+(const ExactNumber &other) const;
    ExactNumber operator-(const ExactNumber &other) const { return *this + other.negated(); }
    ExactNumber operator*(const ExactNumber &other) const;

    // The nearest number of the format; of two equally near, the one whose last bit is 0.
    ExactNumber rounded(RoundingFormat format) const;

    // Without its fraction, and no farther from 0 than the limits of 32 bits.
    std::int32_t cutToInteger() const;

    // Signed zeros are different numbers here.
    bool operator==(const ExactNumber &other) const;

private:
    using Limbs = std::vector<std::uint32_t>;   // the lowest 32 bits first, none of them zero at the end

    ExactNumber(bool isNegative, Limbs limbs, int exponentOfTheLowestBit);

    bool negative = false;
    Limbs magnitude;
    int exponent = 0;
};
