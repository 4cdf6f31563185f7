#include "tests/models/exact_number.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace
{

using Limbs = std::vector<std::uint32_t>;

void trim(Limbs &limbs)
{
    while (!limbs.empty() && limbs.back() == 0)
        limbs.pop_back();
}

Limbs limbsOf(std::uint64_t number)
{
    Limbs limbs = {static_cast<std::uint32_t>(number), static_cast<std::uint32_t>(number >> 32)};
    trim(limbs);
    return limbs;
}

int bitCount(const Limbs &limbs)
{
    return limbs.empty() ? 0 : static_cast<int>(32 * limbs.size()) - std::countl_zero(limbs.back());
}

bool bitAt(const Limbs &limbs, int place)
{
    const std::size_t limb = static_cast<std::size_t>(place / 32);
    return place >= 0 && limb < limbs.size() && (limbs[limb] >> (place % 32) & 1) != 0;
}

bool anyBitBelow(const Limbs &limbs, int place)
{
    for (int lower = 0; lower < place; lower += 32)
    {
        const std::size_t limb = static_cast<std::size_t>(lower / 32);
        if (limb >= limbs.size())
            return false;
        const std::uint32_t mask = place - lower >= 32 ? 0xFFFFFFFFu : (1u << (place - lower)) - 1;
        if ((limbs[limb] & mask) != 0)
            return true;
    }
    return false;
}

Limbs shiftedUp(const Limbs &limbs, int places)
{
    if (limbs.empty())
        return {};
    Limbs result(static_cast<std::size_t>(places / 32), 0);
    std::uint64_t carry = 0;
    for (const std::uint32_t limb : limbs)
    {
        carry |= static_cast<std::uint64_t>(limb) << (places % 32);
        result.push_back(static_cast<std::uint32_t>(carry));
        carry >>= 32;
    }
    result.push_back(static_cast<std::uint32_t>(carry));
    trim(result);
    return result;
}

Limbs shiftedDown(const Limbs &limbs, int places)
{
    const std::size_t whole = static_cast<std::size_t>(places / 32);
    Limbs result;
    for (std::size_t index = whole; index < limbs.size(); ++index)
    {
        const std::uint64_t above = index + 1 < limbs.size() ? limbs[index + 1] : 0;
        result.push_back(static_cast<std::uint32_t>((above << 32 | limbs[index]) >> (places % 32)));
    }
    trim(result);
    return result;
}

bool isLess(const Limbs &a, const Limbs &b)
{
    if (a.size() != b.size())
        return a.size() < b.size();
    return std::lexicographical_compare(a.rbegin(), a.rend(), b.rbegin(), b.rend());
}

Limbs sum(const Limbs &a, const Limbs &b)
{
    Limbs result;
    std::uint64_t carry = 0;
    for (std::size_t index = 0; index < std::max(a.size(), b.size()) || carry != 0; ++index)
    {
        carry += index < a.size() ? a[index] : 0;
        carry += index < b.size() ? b[index] : 0;
        result.push_back(static_cast<std::uint32_t>(carry));
        carry >>= 32;
    }
    return result;
}

// Of numbers of which the first is the larger one.
Limbs difference(const Limbs &a, const Limbs &b)
{
    Limbs result;
    std::int64_t borrow = 0;
    for (std::size_t index = 0; index < a.size(); ++index)
    {
        borrow += static_cast<std::int64_t>(a[index]) - (index < b.size() ? b[index] : 0);
        result.push_back(static_cast<std::uint32_t>(borrow));
        borrow >>= 32;
    }
    trim(result);
    return result;
}

Limbs product(const Limbs &a, const Limbs &b)
{
    Limbs result(a.size() + b.size(), 0);
    for (std::size_t indexA = 0; indexA < a.size(); ++indexA)
    {
        std::uint64_t carry = 0;
        for (std::size_t indexB = 0; indexB < b.size() || carry != 0; ++indexB)
        {
            carry += result[indexA + indexB];
            carry += indexB < b.size() ? static_cast<std::uint64_t>(a[indexA]) * b[indexB] : 0;
            result[indexA + indexB] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
    }
    trim(result);
    return result;
}

}   // namespace

ExactNumber::ExactNumber(double finiteValue)
{
    const double significand = std::frexp(std::fabs(finiteValue), &exponent);
    exponent -= 53;
    negative = std::signbit(finiteValue);
    magnitude = limbsOf(static_cast<std::uint64_t>(std::ldexp(significand, 53)));
}

ExactNumber::ExactNumber(bool isNegative, Limbs limbs, int exponentOfTheLowestBit)
    : negative(isNegative), magnitude(std::move(limbs)), exponent(exponentOfTheLowestBit)
{
}

// Division as on paper, in binary: 96 places, more than any format holds, and one more that says if anything is left.
ExactNumber ExactNumber::quotient(std::int64_t numerator, std::int64_t denominator, RoundingFormat format)
{
    const std::uint64_t divisor = static_cast<std::uint64_t>(denominator < 0 ? -denominator : denominator);
    const std::uint64_t dividend = static_cast<std::uint64_t>(numerator < 0 ? -numerator : numerator);
    Limbs limbs = limbsOf(dividend / divisor);
    std::uint64_t rest = dividend % divisor;
    for (int limb = 0; limb < 3; ++limb)
    {
        std::uint32_t bits = 0;
        for (int bit = 0; bit < 32; ++bit)
        {
            rest *= 2;
            bits = bits * 2 + (rest >= divisor ? 1 : 0);
            rest %= divisor;
        }
        limbs.insert(limbs.begin(), bits);
    }
    trim(limbs);
    limbs = sum(shiftedUp(limbs, 1), limbsOf(rest != 0 ? 1 : 0));
    return ExactNumber((numerator < 0) != (denominator < 0), limbs, -97).rounded(format);
}

ExactNumber ExactNumber::negated() const
{
    return {!negative, magnitude, exponent};
}

ExactNumber ExactNumber::operator+(const ExactNumber &other) const
{
    const int common = std::min(exponent, other.exponent);
    const Limbs a = shiftedUp(magnitude, exponent - common), b = shiftedUp(other.magnitude, other.exponent - common);
    if (negative == other.negative)
        return {negative, sum(a, b), common};
    if (a == b)
        return {false, {}, common};
    return isLess(a, b) ? ExactNumber(other.negative, difference(b, a), common) : ExactNumber(negative, difference(a, b), common);
}

ExactNumber ExactNumber::operator*(const ExactNumber &other) const
{
    return {negative != other.negative, product(magnitude, other.magnitude), exponent + other.exponent};
}

ExactNumber ExactNumber::rounded(RoundingFormat format) const
{
    const int dropped = std::max(bitCount(magnitude) - format.significandBits, format.smallestExponent - exponent);
    if (dropped <= 0)
        return *this;
    Limbs kept = shiftedDown(magnitude, dropped);
    const bool halfOrMore = bitAt(magnitude, dropped - 1);
    if (halfOrMore && (anyBitBelow(magnitude, dropped - 1) || bitAt(kept, 0)))
        kept = sum(kept, limbsOf(1));
    return {negative, kept, exponent + dropped};
}

std::int32_t ExactNumber::cutToInteger() const
{
    constexpr std::int64_t largest = std::numeric_limits<std::int32_t>::max();
    const std::int64_t limit = negative ? largest + 1 : largest;
    std::int64_t whole = limit;
    if (magnitude.empty() || bitCount(magnitude) + exponent <= 32)
    {
        const Limbs limbs = exponent >= 0 ? shiftedUp(magnitude, exponent) : shiftedDown(magnitude, -exponent);
        whole = std::min<std::int64_t>(limbs.empty() ? 0 : limbs.front(), limit);
    }
    return static_cast<std::int32_t>(negative ? -whole : whole);
}

bool ExactNumber::operator==(const ExactNumber &other) const
{
    const int common = std::min(exponent, other.exponent);
    return negative == other.negative && shiftedUp(magnitude, exponent - common) == shiftedUp(other.magnitude, other.exponent - common);
}
