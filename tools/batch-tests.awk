# Joins test sources to one that compiles in a fraction of their time: what they include comes once, at the beginning, and each
# file's own code in a namespace named after the file, where its names meet no other's. Messages and debuggers still name
# the files and lines that people wrote.
#
#   awk -f tools/batch-tests.awk FILE... >BATCH

FNR == 1 {
    if (NR > 1)
        body = body "}\n"
    name = FILENAME
    gsub(/.*\/|\.cpp$/, "", name)
    begun = 0
    body = body "namespace " name "\n{\n#line 1 \"" FILENAME "\"\n"
}

# What is included further down is part of the code.
/^#include/ && !begun {
    if (!($0 in taken))
        print
    taken[$0] = 1
    body = body "\n"
    next
}

{
    begun = begun || !/^(\/\/.*)?$/
    body = body $0 "\n"
}

END { printf "\n%s}\n", body }
