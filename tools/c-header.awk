# Writes the C form of C++ headers that declare things of C linkage, as one header that needs no other:
#
#   awk -f tools/c-header.awk files/fstoolkit.h                   the header
#   awk -v list=1 -f tools/c-header.awk files/fstoolkit.h         what is in it, for its test: CONSTANT(NAME), TYPE(NAME), RECORD(NAME), FIELD(RECORD, NAME)
#
# It runs in the folder that #include begins at. It knows the few forms in which these headers say things, and fails on
# any other, so that nothing is left out or guessed. Types stay exactly what they are: a constant is a cast number.

function fail(message)
{
    print current ": " message > "/dev/stderr"
    failed = 1
    exit 1
}

function show(line)
{
    if (!list)
        print line
}

function listed(line)
{
    if (list)
        print line
}

# "TEXT" as the number that its four characters make.
function codeOf(characters,    at, value)
{
    value = 0
    for (at = 1; at <= 4; ++at)
        value = value * 256 + index(ascii, substr(characters, at, 1)) + 31
    return sprintf("0x%04X%04X", int(value / 65536), value % 65536)
}

function valueIn(text)
{
    if (match(text, /^fourCharCode\("[^"\\]*"\)$/))
        return codeOf(substr(text, 15, 4))
    return text
}

function comment(line)
{
    return match(line, / +\/\/.*$/) ? substr(line, RSTART) : ""
}

function withoutComment(line)
{
    sub(/ +\/\/.*$/, "", line)
    return line
}

function constant(type, name, value, line)
{
    listed("CONSTANT(" name ")")
    show("#define " name " ((" type ")(" valueIn(value) "))" comment(line))
}

# using NAME = TYPE;
function alias(line,    text, name, type, part)
{
    text = withoutComment(line)
    sub(/^using /, "", text)
    sub(/;$/, "", text)
    name = text
    sub(/ = .*$/, "", name)
    type = substr(text, length(name) + 4)
    listed("TYPE(" name ")")
    if (type ~ /^std::conditional_t</)
        return chosen(type, name, comment(line))
    if (match(type, /\[[0-9]+\]$/))
        show("typedef " substr(type, 1, RSTART - 1) " " name substr(type, RSTART) ";" comment(line))
    else if (match(type, /\(\*\)/))
        show("typedef " substr(type, 1, RSTART - 1) "(*" name ")" substr(type, RSTART + 3) ";" comment(line))
    else if (type ~ /[(<]/)
        fail("a type of no known form: " line)
    else
        show("typedef " type (type ~ /\*$/ ? "" : " ") name ";" comment(line))
}

# std::conditional_t<sizeof(WHAT) == 4, ONE, OTHER>: as a type's name, or without `typedef` as a field.
function chosen(type, name, note,    parts, size, keyword)
{
    keyword = inRecord ? "    " : "typedef "
    sub(/^std::conditional_t<sizeof\(/, "", type)
    sub(/>$/, "", type)
    if (split(type, parts, /\) == 4, |, /) != 3)
        fail("a choice of no known form: " type)
    size = parts[1] == "long" ? "__SIZEOF_LONG__" : "__SIZEOF_POINTER__"
    show("#if " size " == 4")
    show(keyword parts[2] " " name ";" note)
    show("#else")
    show(keyword parts[3] " " name ";" note)
    show("#endif")
}

# One line of a struct or union. Only fields of records are there: no functions, no first values.
function field(line,    text, parts, count, at, name)
{
    text = withoutComment(line)
    if (text ~ /^    std::conditional_t</)
    {
        name = text
        sub(/^.* /, "", name)
        sub(/;$/, "", name)
        sub(/^ +/, "", text)
        sub(/ [A-Za-z0-9_]+;$/, "", text)
        listed("FIELD(" record ", " name ")")
        return chosen(text, name, comment(line))
    }
    if (text ~ /[()<>={}&]|::/)
        fail("a field of no known form: " line)
    show(line)
    sub(/^ +/, "", text)
    if (text !~ /;$/)
        fail("a field on several lines: " line)
    sub(/;$/, "", text)
    count = split(text, parts, /, /)
    for (at = 1; at <= count; ++at)
    {
        name = parts[at]
        sub(/\[[^]]*\]$/, "", name)
        sub(/^.*[ *]/, "", name)
        listed("FIELD(" record ", " name ")")
    }
}

function member(line,    text, name, value)
{
    text = withoutComment(line)
    sub(/^ +/, "", text)
    sub(/,$/, "", text)
    if (text !~ /^[A-Za-z0-9_]+ = [^,]+$/)
        fail("a number without a value: " line)
    name = value = text
    sub(/ = .*$/, "", name)
    sub(/^[^=]*= /, "", value)
    constant(enumType, name, value, line)
}

function constexprLine(line,    text, type, name, value)
{
    text = withoutComment(line)
    if (text !~ /^constexpr [A-Za-z0-9_ ]+ [A-Za-z0-9_]+ = [^{}]+;$/)
        fail("a constant of no known form: " line)
    type = name = value = text
    sub(/^constexpr /, "", type)
    sub(/ [A-Za-z0-9_]+ = .*$/, "", type)
    sub(/ = .*$/, "", name)
    sub(/^.* /, "", name)
    sub(/^[^=]* = /, "", value)
    sub(/;$/, "", value)
    constant(type, name, value, line)
}

function declaration(line)
{
    if (withoutComment(line) ~ /::|&|<|=|template|nullptr/)
        fail("a declaration of no known form: " line)
    sub(/\(\)/, "(void)", line)
    show(line)
}

# One line of a header, outside the forms that span several.
function take(line,    name)
{
    if (skipped)
    {
        if (line == "}")
            skipped = 0
    }
    else if (inEnum)
    {
        if (line == "};")
            inEnum = 0
        else if (line ~ /^ *(\/\/.*)?$/)
            show(line)
        else if (line != "{")
            member(line)
    }
    else if (inRecord)
    {
        if (line == "};")
            inRecord = 0
        if (line ~ /^(\{|\};| *(\/\/.*)?)$/)
            show(line)
        else
            field(line)
    }
    else if (line ~ /^enum : /)
    {
        enumType = withoutComment(line)
        sub(/^enum : /, "", enumType)
        inEnum = 1
    }
    else if (line ~ /^(struct|union) [A-Za-z0-9_]+;/)
    {
        name = withoutComment(line)
        sub(/;$/, "", name)
        show("typedef " name " " substr(name, index(name, " ") + 1) ";" comment(line))
    }
    else if (line ~ /^(struct|union) [A-Za-z0-9_]+$/)
    {
        record = substr(line, index(line, " ") + 1)
        listed("RECORD(" record ")")
        show("typedef " line " " record ";")
        show(line)
        inRecord = 1
    }
    else if (line ~ /^constexpr OSType fourCharCode\(/)
    {
        show("#define fourCharCode(characters) " \
             "((OSType)((OSType)(UInt8)(characters)[0] << 24 | (OSType)(UInt8)(characters)[1] << 16 | " \
             "(OSType)(UInt8)(characters)[2] << 8 | (UInt8)(characters)[3]))")
        skipped = 1
    }
    else if (line ~ /^using /)
        alias(line)
    else if (line ~ /^constexpr /)
        constexprLine(line)
    else if (line ~ /^(\/\/.*)?$|^#pragma (pack|GCC visibility)/)
        show(line)
    else if (line ~ /^(extern "C"|\{|\}|#pragma once|#include <type_traits>)$/)
        return
    else if (line ~ /^([A-Za-z]| +[A-Za-z])/)
        declaration(line)
    else
        fail("a line of no known form: " line)
}

# A header where it is first included; those that it includes come before it.
function header(path,    line, lines, count, at)
{
    if (path in seen)
        return
    seen[path] = 1
    count = 0
    while ((getline line < path) > 0)
    {
        if (line ~ /^#include "/)
        {
            sub(/^#include "/, "", line)
            sub(/".*$/, "", line)
            header(line)
        }
        else
            lines[++count] = line
    }
    if (count == 0)
        fail("cannot read " path)
    close(path)
    current = path
    show("")
    show("// ---- " path)
    show("")
    for (at = 1; at <= count; ++at)
        take(lines[at])
    if (inEnum || inRecord || skipped)
        fail(path " ends too early")
}

BEGIN {
    for (at = 32; at < 127; ++at)
        ascii = ascii sprintf("%c", at)
    show("// The C form of " ARGV[1] ", with all that it includes of platform/. Made from those headers by tools/c-header.awk: change them instead.")
    show("//")
    show("// C programs need no other header. In C++ this is the header itself. Constants are cast numbers, good for `switch` and for first values.")
    show("#pragma once")
    show("")
    show("#ifdef __cplusplus")
    show("#include \"" ARGV[1] "\"")
    show("#else")
    header(ARGV[1])
    show("")
    show("#endif")
    exit failed
}
