# The same lines as test-results.awk, out of the log of a GoogleTest program that ended too early to write a report.
# The test that was running failed, or the program itself if none was; -v ending=... says how it ended.

function report(outcome, name, reason)
{
    sub(/,$/, "", name)
    print outcome "\t" place "\t" name "\t" reason
}

/: Skipped$/ {
    skipReasonFollows = 1
    next
}

skipReasonFollows {
    skipReason = $0
    skipReasonFollows = 0
}

/^\[ RUN      \] / {
    running = $4
}

# With the milliseconds: without them it's the summary, which names tests again.
/^\[       OK \] .* ms\)$/ {
    report("passed", $4, "")
    running = ""
}

/^\[  SKIPPED \] .* ms\)$/ {
    report("skipped", $4, skipReason)
    running = ""
}

/^\[  FAILED  \] .* ms\)$/ {
    report("failed", $4, "")
    running = ""
}

END {
    report("failed", running == "" ? "(the program itself)" : running, ending)
}
