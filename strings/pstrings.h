// Length-prefixed strings, and conversions between numbers and text.
//
// A length-prefixed (Pascal) string is an array of bytes: byte 0 holds the length, 0 to 255, and bytes 1 to length the
// characters, Mac Roman unless the caller says otherwise. What lies behind them is no part of the string. What holds for
// all functions:
//
// - Positions are 1-based, and a position of 0 means that nothing was found.
// - The destination comes first; in Pos, Posn and PosnAt, the thing that is looked for.
// - No function reports an error, and none asks for the size of a destination: a caller provides 256 bytes, or for a C
//   string the length and one more. A length that does not fit its byte is stored modulo 256.
// - Exactly the bytes named are written; nothing is cleared behind a result. Bytes are copied one by one in ascending
//   order, which is what decides where source and destination overlap.
// - Numbers are 32-bit whatever the width of `long`, and arithmetic wraps around. A `long` result holds the 32-bit value
//   with its sign.
// - Booleans are exactly 0 or 1.
// - No pointer may be null. Nothing is allocated or kept between calls, so that functions may be called from any thread;
//   AdjustStrWidth alone belongs where the host draws.

#pragma once

#include "platform/platform.h"

#pragma GCC visibility push(default)

// ---------------------------------------------------------------------------------------------------------------------
// Strings
// ---------------------------------------------------------------------------------------------------------------------

// Makes a length-prefixed string of a C string.
//
// The length is taken modulo 256, not cut off at 255: of 300 characters the first 44 arrive, of 256 none at all. The
// length byte is written first.
void CopyCtoPstr(unsigned char *destination, char const *source);

// Makes a C string of a length-prefixed string.
//
// Always writes length + 1 bytes. A zero byte among the characters ends the text there: from it on everything is zero.
// Destination and source may be the same buffer.
void CopyPtoCstr(char *destination, unsigned char const *source);

// Reads a decimal number.
//
// Result: the value that StringToNum makes of the text, whatever the text is; 0 for the empty string.
long Val(unsigned char const *text);

// Gives the value of a decimal digit.
//
// Result: 0 to 9. Any other character gives 0 as well and cannot be told from the digit '0'.
short Valc(char c);

// Writes a number in decimal, as NumToString does: '-' in front of a negative value, no other decoration.
void Str(unsigned char *destination, long value);

// Shortens a text until it fits into `width` pixels, with an ellipsis (0xC9) in place of what was cut off at the end.
//
// The width of one space is always held in reserve. Texts are measured in the current port's font. A text that fits is
// left as it is. Otherwise one character after the other goes, the text being measured each time; an ellipsis that
// would stand alone is not shown, and the text becomes the empty string.
//
// `text` has to be a buffer of at least 202 bytes: where even one character is too many, the ellipsis is written over the
// length byte itself, which makes a text of 201 bytes, and cutting goes on from there. So a one-character text that does
// not fit ends as the empty string, with bytes 1 to 200 overwritten. Where not even a lone ellipsis fits, the function
// does not return: pass a width of at least a space and an ellipsis.
void AdjustStrWidth(unsigned char *text, int width);

// Finds a character.
//
// `c` counts as a signed value and the characters of the text as unsigned ones, on every machine: a character of 128 or
// more is never found.
//
// Result: the position of the first one, or 0.
short Pos(char c, unsigned char const *text);

// Finds a text in another, byte for byte.
//
// An empty pattern is looked for as if it were one character long: the byte behind its length byte has to be in the
// text or to follow it.
//
// Result: the position where the first match begins, or 0.
short Posn(unsigned char const *pattern, unsigned char const *text);

// Finds a text in another, as Posn does, beginning at position `start`.
//
// A start below 1 is taken as it is: the search then begins at the length byte or in front of it. A match at index 0
// does not count, and the search goes on behind it.
//
// Result: the position where the first match begins, or 0; always 0 if the pattern is longer than the text.
short PosnAt(unsigned char const *pattern, unsigned char const *text, short start);

// Copies a string: its length byte and its characters.
void Copy(unsigned char *destination, unsigned char const *source);

// Copies the first `count` characters of a string, or all if there are fewer.
//
// A negative count copies no character, and the low byte of the count becomes the length: -1 gives length 255 over
// whatever bytes the destination held. The length byte is written last.
void Copyn(unsigned char *destination, unsigned char const *source, short count);

// Compares two strings byte for byte.
//
// Result: 1 if they are equal, 0 if not. There is no order between strings.
Boolean Comp(unsigned char const *a, unsigned char const *b);

// Appends a string to another.
//
// All characters are stored, also beyond byte 255, and the length wraps: 200 and 100 characters give length 44. Callers
// keep the sum at 255 or below.
void Concat(unsigned char *destination, unsigned char const *source);

// Copies `count` characters of a string from position `start` on, or as many as there are.
//
// With a start behind the end, or a count of 0 or less, the result is the empty string. A start below 1 is taken as it
// is: with 0 the source's length byte is copied as the first character. The destination is made empty first, so that
// a string cannot be cut in place: onto itself, from start 1 or more, the result is the empty string.
void Mid(unsigned char *destination, unsigned char const *source, short start, short count);

// Says whether a text consists of decimal digits alone.
//
// Result: 1 if it does; 0 if not, and for the empty string.
Boolean AllisNum(unsigned char *text);

// ---------------------------------------------------------------------------------------------------------------------
// Numbers
// ---------------------------------------------------------------------------------------------------------------------
//
// Where a value is made an integer, it is cut towards zero and kept within -2147483648 to 2147483647; what is not a number
// becomes -2147483648.

// Rounds a value to an integer.
//
// The value passes through single precision first. From 0 up, halves are rounded up (2.4 gives 2, 2.5 gives 3). Between -1
// and 0, halves are rounded away from zero (-0.4 gives 0, -0.5 gives -1). At -1 and below the result is always one less
// than the value cut towards zero, for whole numbers too: -1.0 and -1.5 give -2, -2.0 gives -3. This asymmetry is meant.
//
// Result: the integer; where a step beyond the 32-bit range is taken it wraps around (3.0e9 gives -2147483648).
long DoubleToLong(double value);

// Reads a hexadecimal number.
//
// Letters may be small or capital. Every other character counts as the digit 0 and is no error: '$1A', '0x1A' and '1A' are
// all 26. The last eight characters make the value; the eight before them contribute nothing, the eight before those are
// read as if they were the last, and so on every 16 characters.
//
// `value` is always written: 0 for the empty string; eight digits fill all 32 bits, so that 'FFFFFFFF' is -1.
void StringHexToNum(unsigned char *text, long *value);

// Writes a value in decimal with a fixed number of decimals, at most nine.
//
// Decimals are cut off, not rounded (1.999 with 2 decimals gives '1.99'), after 0.0000001 was added to the fraction so that
// 0.29 gives the decimals 29. If what remains of the fraction is 0, there is no decimal point at all (2.0 with 2 decimals
// gives '2'); otherwise all decimals asked for are there (2.5 gives '2.50'). With `decimals` of 0 or less only the integer
// part is asked for.
//
// What looks odd follows from the same rules and is meant: -0.004 with 2 decimals gives '-0'; from seven decimals on the
// added bit shows (1.0 gives '1.0000001'); 0.9999999 with 2 decimals gives '0.100'; the integer part passes through single
// precision, and where that rounds up, the fraction has a minus sign of its own (16777217.5 with 1 decimal gives
// '16777218.-4'). From ten decimals on, and for magnitudes of 2147483648 or more, the text is meaningless.
void MyDoubleToString(unsigned char *destination, double value, short decimals);

// Reads a decimal number with a fraction.
//
// Only digits, '-', '.' and ',' are looked at; every other character is passed over wherever it stands ('1e5' is 15). The
// first '.' separates the fraction, or the first ',' where there is no '.'; grouping is not understood. With a
// separator, a '-' anywhere makes the value negative; without one, the text goes to StringToNum as it stands. A fraction
// of up to nine digits is exact; beyond that, 32 bits wrap around and the value is meaningless.
//
// `value` is always written: 0.0 for a text without any digit.
void MyStringToDouble(unsigned char *text, double *value);

#pragma GCC visibility pop
