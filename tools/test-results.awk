# Turns GoogleTest's XML report into one line a test, separated by tabs: passed, failed or skipped; the place, given
# as -v place=...; the test's name; and why it was skipped. Test output within the report is passed over.

function attribute(name,    rest)
{
    if (!match($0, " " name "=\""))
        return ""
    rest = substr($0, RSTART + RLENGTH)
    return substr(rest, 1, index(rest, "\"") - 1)
}

# The message starts with the source line, as a line of its own.
function plain(text)
{
    sub(/^[^&]*&#x0A;/, "", text)
    gsub(/&#x[0-9A-F]+;/, " ", text)
    gsub(/&lt;/, "<", text)
    gsub(/&gt;/, ">", text)
    gsub(/&quot;/, "\"", text)
    gsub(/&apos;/, "'", text)
    gsub(/&amp;/, "\\&", text)
    return text
}

function report()
{
    if (name != "")
        print outcome "\t" place "\t" name "\t" reason
    name = ""
}

inOutput {
    if (index($0, "]]>"))
        inOutput = 0
    next
}

/^ *<testcase / {
    report()
    name = attribute("classname") "." attribute("name")
    outcome = "passed"
    reason = ""
    if (attribute("status") == "notrun") {
        outcome = "skipped"
        reason = "disabled in its source"
    }
}

/^ *<failure / {
    outcome = "failed"
    reason = ""
}

/^ *<skipped / && outcome == "passed" {
    outcome = "skipped"
    reason = plain(attribute("message"))
}

index($0, "<![CDATA[") && !index($0, "]]>") {
    inOutput = 1
}

END {
    report()
}
