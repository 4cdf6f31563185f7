# Makes the one table of ./bench, from the lines that the programs in benchmarks/ write: fields separated by tabs, in the order of `field` below,
# empty where there is nothing to say. Lines that begin with "#" are headings; those that begin with "!" say about the run.
#
#   awk -v form=text|markdown|json -f tools/bench-table.awk ROWS

function initialise(    names, i)
{
    count = split("operation oursToFloor floor peer peerToFloor oursToPeer ourCalls floorCalls aimToFloor aimToPeer ourNanoseconds floorNanoseconds " \
                  "reason remark", names, " ")
    for (i = 1; i <= count; i++)
        field[names[i]] = i
}

function at(name) { return $(field[name]) }
function orDash(text) { return text == "" ? "–" : text }
function ratio(number) { return number == "" ? "–" : sprintf("%.2f", number) }

# As many calls as there are, without digits that say nothing.
function calls(number)
{
    if (number == "")
        return "–"
    if (number < 0.005 && number > 0)
        return "<0.01"
    number = sprintf("%.2f", number)
    sub(/\.?0+$/, "", number)
    return number
}

function duration(nanoseconds)
{
    if (nanoseconds == "")
        return "–"
    if (nanoseconds < 1000)
        return sprintf("%.3g ns", nanoseconds)
    if (nanoseconds < 1000000)
        return sprintf("%.3g µs", nanoseconds / 1000)
    return sprintf("%.3g ms", nanoseconds / 1000000)
}

function aim(    text)
{
    text = at("aimToFloor") == "" ? "" : "≤ " ratio(at("aimToFloor"))
    if (at("aimToPeer") != "")
        text = text (text == "" ? "" : ", ") "≤ " ratio(at("aimToPeer")) " of peer"
    return orDash(text)
}

# What is shown is what counts: a ratio with two decimals.
function exceeds(number, limit) { return limit != "" && sprintf("%.2f", number) + 0 > limit + 0 }

# Nothing where there is no aim, or no peer to compare with.
function verdict()
{
    if (exceeds(at("oursToFloor"), at("aimToFloor")) || exceeds(at("oursToPeer"), at("aimToPeer")))
        return "no"
    if (at("aimToFloor") == "" && at("aimToPeer") == "" || at("aimToPeer") != "" && at("oursToPeer") == "")
        return ""
    return "yes"
}

# Remarks become numbered notes beneath the table; the same one is told once.
function note(    remark)
{
    remark = at("remark")
    if (remark == "")
        return ""
    if (!(remark in noteNumber))
    {
        notes[++noteCount] = remark
        noteNumber[remark] = noteCount
    }
    return noteNumber[remark]
}

# Bytes and characters differ here: mawk counts bytes.
function visibleLength(text,    copy)
{
    copy = text
    gsub(/[\200-\277]/, "", copy)
    return length(copy)
}
function left(text, width) { while (visibleLength(text) < width) text = text " "; return text }
function right(text, width) { while (visibleLength(text) < width) text = " " text; return text }

function textRow(operation, ours, floor, peer, peerRatio, beside, ourCalls, floorCalls, aimed, met, time)
{
    print left(operation, 58) " " right(ours, 7) "  " left(floor, 25) " " right(time, 9) "  " left(peer, 29) " " right(peerRatio, 7) " " \
          right(beside, 10) " " right(ourCalls, 7) " " right(floorCalls, 7) "  " left(aimed, 22) " " met
}

function markdownRow(operation, ours, floor, peer, peerRatio, beside, ourCalls, floorCalls, aimed, met, time)
{
    print "| " operation " | " ours " | " floor " | " time " | " peer " | " peerRatio " | " beside " | " ourCalls " | " floorCalls " | " aimed " | " met " |"
}

function anchor(heading)
{
    heading = tolower(heading)
    gsub(/[^a-z0-9 -]/, "", heading)
    gsub(/ /, "-", heading)
    return "#" heading
}

function link(met)
{
    if (met != "no" || at("reason") == "")
        return orDash(met)
    return form == "markdown" ? "[no](" anchor(at("reason")) ")" : "no: " at("reason")
}

function row(    operation, met, mark)
{
    met = verdict()
    ++verdicts[met]
    mark = note()
    operation = at("operation")
    if (mark != "")
        operation = operation (form == "markdown" ? "<sup>" mark "</sup>" : " (" mark ")")
    if (form == "markdown")
        markdownRow(operation, "**" ratio(at("oursToFloor")) "**", orDash(at("floor")), orDash(at("peer")), ratio(at("peerToFloor")), ratio(at("oursToPeer")),
                    calls(at("ourCalls")), calls(at("floorCalls")), aim(), link(met), duration(at("floorNanoseconds")))
    else
        textRow(operation, ratio(at("oursToFloor")), orDash(at("floor")), orDash(at("peer")), ratio(at("peerToFloor")), ratio(at("oursToPeer")),
                calls(at("ourCalls")), calls(at("floorCalls")), aim(), link(met), duration(at("floorNanoseconds")))
}

function quoted(text)
{
    gsub(/\\/, "\\\\", text)
    gsub(/"/, "\\\"", text)
    return "\"" text "\""
}

function jsonRow(    name, line, value, i)
{
    line = ""
    for (i = 1; i <= count; i++)
    {
        for (name in field)
            if (field[name] == i)
                break
        value = $i
        line = line (i > 1 ? ", " : "") quoted(name) ": " (value == "" ? "null" : value ~ /^-?[0-9.]+$/ ? value + 0 : quoted(value))
    }
    value = verdict()
    return "    {\"subject\": " quoted(heading) ", " line ", \"met\": " (value == "" ? "null" : value == "yes" ? "true" : "false") "}"
}

function head()
{
    if (form == "markdown")
    {
        markdownRow("operation", "ours ×", "floor", "best peer", "peer ×", "ours ÷ peer", "our calls", "floor's calls", "aim", "met", "floor takes")
        print "|---|--:|---|--:|---|--:|--:|--:|--:|---|---|"
    }
    else
        textRow("", "ours ×", "floor", "best peer", "peer ×", "ours÷peer", "calls", "floor's", "aim", "met", "takes")
}

# A subject of which no row was wanted has none.
function printHeading(    i)
{
    if (!headed++)
    {
        for (i = 1; i <= factCount; i++)
            print (form == "markdown" ? "- " : "") fact[i] ": " factText[i]
        print ""
        head()
    }
    if (form == "markdown")
        markdownRow("**" heading "**")
    else
        print heading
}

BEGIN {
    FS = "\t"
    initialise()
}

/^!/ {
    fact[++factCount] = $2
    factText[factCount] = $3
    next
}

/^#/ {
    heading = $2
    isHeadingDue = 1
    next
}

form == "json" {
    rows = rows (rows == "" ? "" : ",\n") jsonRow()
    next
}

isHeadingDue {
    printHeading()
    isHeadingDue = 0
}

{ row() }

END {
    if (form == "json")
    {
        for (i = 1; i <= factCount; i++)
            facts = facts (i > 1 ? ", " : "") quoted(fact[i]) ": " quoted(factText[i])
        print "{\n  \"run\": {" facts "},\n  \"rows\": [\n" rows "\n  ]\n}"
        exit
    }
    print ""
    for (i = 1; i <= noteCount; i++)
        print (form == "markdown" ? "<sup>" i "</sup> " : "(" i ") ") notes[i] (form == "markdown" && i < noteCount ? "<br>" : "")
    if (noteCount)
        print ""
    printf "%d of %d aims are met.\n", verdicts["yes"], verdicts["yes"] + verdicts["no"]
}
