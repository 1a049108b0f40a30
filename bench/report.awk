# Makes the tables of docs/benchmarks.md out of what was measured:
#   awk -f report.awk -v plots=FOLDER rows.tsv growth.tsv memory.tsv limits.tsv results.tsv
# A result is a line of row, side, seconds, seconds of CPU and KiB. Writes the plots' data to FOLDER.
BEGIN { FS = OFS = "\t" }

/^#/ { next }
FILENAME ~ /rows\.tsv$/ { row[++rows] = $0; next }
FILENAME ~ /growth\.tsv$/ { growth[++growths] = $0; next }
FILENAME ~ /memory\.tsv$/ { memory[++memories] = $0; next }
FILENAME ~ /limits\.tsv$/ { limit[++limits] = $0; next }
{
    value[$1, $2, "time", ++count[$1, $2]] = $3
    value[$1, $2, "cpu", count[$1, $2]] = $4
    value[$1, $2, "memory", count[$1, $2]] = $5
}

# Sets lowest, middle (the median) and highest.
function measure(name, side, what,    i, j, n, sorted, swap) {
    n = count[name, side]
    if (n == 0) {
        print "report.awk: nothing was measured of " name ", " side > "/dev/stderr"
        failed = 1
        exit 1
    }
    for (i = 1; i <= n; ++i) {
        sorted[i] = value[name, side, what, i] + 0
        for (j = i; j > 1 && sorted[j] < sorted[j - 1]; --j) {
            swap = sorted[j]; sorted[j] = sorted[j - 1]; sorted[j - 1] = swap
        }
    }
    lowest = sorted[1]
    highest = sorted[n]
    middle = n % 2 ? sorted[(n + 1) / 2] : (sorted[n / 2] + sorted[n / 2 + 1]) / 2
}

function seconds(x) {
    if (x >= 1) return sprintf("%.2f s", x)
    if (x >= 1e-3) return sprintf("%.3g ms", x * 1e3)
    if (x >= 1e-6) return sprintf("%.3g µs", x * 1e6)
    return sprintf("%.3g ns", x * 1e9)
}

function amount(x, what) {
    return what == "memory" ? sprintf("%.1f MiB", x / 1024) : seconds(x)
}

function spread(what) {
    return amount(middle, what) " (" amount(lowest, what) " to " amount(highest, what) ")"
}

function met(ratio, wanted,    words) {
    if (wanted == "") return ""
    split(wanted, words, " ")
    return (words[1] == ">=" ? ratio >= words[2] : ratio <= words[2]) ? "yes" : "**no**"
}

function cells(a, b, c, d, e, f, g) {
    printf "| %s | %s | %s | %s | %s | %s | %s |\n", a, b, c, d, e, f, g
}

END {
    if (failed) exit 1
    cells("what", "beside", "ours: median (least to most)", "peer: median (least to most)", "ratio", "wanted", "met")
    cells("---", "---", "---", "---", "---", "---", "---")
    for (r = 1; r <= rows; ++r) {
        split(row[r], field, "\t")
        name = field[1]
        what = field[4] == "throughput" ? "time" : field[4]
        measure(name, "ours", what)
        ours = middle
        oursText = spread(what)
        measure(name, "peer", what)
        ratio = field[4] == "throughput" ? middle / ours : ours / middle
        cells(field[2], field[3], oursText, spread(what), sprintf("%.2f (%s)", ratio, field[4]), field[5], met(ratio, field[5]))
        if (field[6] > 0)
            print name, field[6] / ours, field[6] / middle > (plots "/throughput.tsv")
    }

    print "\n| growth | tasks | median (least to most) | tasks | median (least to most) | time grew | wanted at most | met |"
    print "| --- | --- | --- | --- | --- | --- | --- | --- |"
    for (g = 1; g <= growths; ++g) {
        split(growth[g], field, "\t")
        measure(field[1] "/" field[3], "ours", "time")
        before = middle
        beforeText = spread("time")
        measure(field[1] "/" field[4], "ours", "time")
        ratio = middle / before
        printf "| %s | %d | %s | %d | %s | %.2f times | %s | %s |\n", field[2], field[3], beforeText, field[4], spread("time"), ratio, field[5], met(ratio, field[5] == "" ? "" : "<= " field[5])
        points[field[1], field[3]] = before
        points[field[1], field[4]] = middle
    }
    for (point in points) {
        split(point, part, SUBSEP)
        print part[2], points[point] > (plots "/growth-" part[1] ".tsv")
    }

    print "\n| memory | most resident | wanted at most | met |"
    print "| --- | --- | --- | --- |"
    for (m = 1; m <= memories; ++m) {
        split(memory[m], field, "\t")
        measure(field[1], "ours", "memory")
        wanted = field[3] == "" ? "" : "<= " field[3]
        printf "| %s | %s | %s | %s |\n", field[2], spread("memory"), field[3] == "" ? "" : field[3] " MiB", met(middle / 1024, wanted)
    }

    print "\n| what | median (least to most) | wanted at most | met |"
    print "| --- | --- | --- | --- |"
    for (l = 1; l <= limits; ++l) {
        split(limit[l], field, "\t")
        measure(field[1], "ours", "time")
        scale = field[3] == "ms" ? 1000 : 100
        unit = " " field[3]
        printf "| %s | %.3g%s (%.3g to %.3g) | %s%s | %s |\n", field[2], middle * scale, unit, lowest * scale, highest * scale, field[4], unit, met(middle * scale, "<= " field[4])
    }
}
