# Makes Debian's changelog of CHANGELOG.md: an entry for each version, with the day on which it was released.
#
#   awk -v maintainer='Name <address>' -f tools/debian-changelog.awk CHANGELOG.md
#
# What is not released yet is of the day when the packages are made. `date` has the names of days and months.

/^## \[[0-9.]+\] - / {
    version = substr($2, 2, length($2) - 2)
    day = $4 == "unreleased" ? "today" : $4
    command = "LC_ALL=C date -u -d '" day " 00:00' '+%a, %d %b %Y %H:%M:%S +0000'"
    if ((command | getline date) <= 0) {
        print "CHANGELOG.md: no date for " version ": " $4 > "/dev/stderr"
        exit 1
    }
    close(command)
    printf "zerb (%s-1) unstable; urgency=medium\n\n  * Version %s; changelog.gz beside this file tells what is new.\n\n -- %s  %s\n\n",
        version, version, maintainer, date
}
