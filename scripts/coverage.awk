# Sums up an lcov file by folders. Variables: root, the path that the files' names begin with; below and
# windows, the folders of either kind.

BEGIN {
    count = split(below, names, " ")
    for (i = 1; i <= count; ++i) kind[names[i]] = "below the windows"
    count = split(windows, names, " ")
    for (i = 1; i <= count; ++i) kind[names[i]] = "in the windows"
    least["below the windows"] = 95
    least["in the windows"] = 90
}

function share(reached, all) {
    return all == 0 ? "    -  " : sprintf("%5.1f %%", 100 * reached / all)
}

# The lines of one file that nothing reached, as ranges.
function tellMissed(    text, i) {
    for (i = 1; i <= missedCount; ++i) {
        if (i > 1 && missed[i] == missed[i - 1] + 1) {
            if (i == missedCount || missed[i + 1] != missed[i] + 1) text = text "-" missed[i]
        } else {
            text = text " " missed[i]
        }
    }
    if (text != "") list = list "  " file ":" text "\n"
    missedCount = 0
}

/^SF:/ {
    file = substr($0, 4)
    sub("^" root, "", file)
    folder = file
    sub("/.*", "", folder)
}
/^DA:/ {
    split(substr($0, 4), parts, ",")
    ++lines[folder]
    if (parts[2] > 0) ++reachedLines[folder]
    else missed[++missedCount] = parts[1]
}
/^BRDA:/ {
    split(substr($0, 6), parts, ",")
    ++branches[folder]
    if (parts[4] != "-" && parts[4] > 0) ++reachedBranches[folder]
}
/^end_of_record/ { tellMissed() }

END {
    printf "%-20s %8s %9s %9s %9s\n", "", "lines", "reached", "branches", "reached"
    for (name in kind) {
        group = kind[name]
        if (!(name in lines)) { print "FAILED: nothing is known of " name; failed = 1 }
        rows[group] = rows[group] sprintf("  %-18s %8d %9s %9d %9s\n", name, lines[name],
            share(reachedLines[name], lines[name]), branches[name],
            share(reachedBranches[name], branches[name]))
        allLines[group] += lines[name]; allReached[group] += reachedLines[name]
        allBranches[group] += branches[name]; allTaken[group] += reachedBranches[name]
    }
    for (group in least) {
        printf "%-20s %8d %9s %9d %9s\n%s", group, allLines[group],
            share(allReached[group], allLines[group]), allBranches[group],
            share(allTaken[group], allBranches[group]), rows[group]
        if (allReached[group] * 100 < least[group] * allLines[group]) {
            printf "FAILED: %s, less than %d %% of the lines\n", group, least[group]
            failed = 1
        }
    }
    printf "Lines that no test reached:\n%s", list
    exit failed
}
