// The number conversions once more: in exact arithmetic and other words, for the tests to hold the library against.
//
// Values are finite. Where a model needs the platform to read a number, it does so itself by the rule of the contract
// tests' double: a '-' in front negates, of every other byte the low four bits are a digit, modulo 2 to the 32.

#pragma once

#include "tests/models/exact_number.h"

#include <cstdint>
#include <string>

std::int32_t modelOfDoubleToLong(double value);
std::int32_t modelOfHexToNumber(const std::string &text);
std::int32_t modelOfNumberFromText(const std::string &text);
std::string modelOfDoubleToString(double value, int decimals);

// For texts with at most 31 characters behind their separator: beyond, the divisor is 0.
ExactNumber modelOfStringToDouble(const std::string &text);
