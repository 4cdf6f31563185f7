# Shows Doxygen the comments of a header as its own kind: those before a declaration, and those behind one. The first is about the file.
# Titles between lines that part sections belong to no declaration and are left out.
/^ *\/\/ -+$/ {
    inTitle = !inTitle
    next
}

inTitle {
    next
}

/^ *\/\// {
    if (!begun)
        print "/// \\file"
    begun = 1
    sub(/\/\//, "///")
    print
    next
}

{
    sub(/; +\/\/ /, "; ///< ")
    sub(/, +\/\/ /, ", ///< ")
    print
}
