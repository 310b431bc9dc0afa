# Extracts the complete programs from a Markdown file: every ```cpp block with a main function, and
# the ```text block after it, which is what the program writes to standard output.
#
# Variables: directory, where STEM-N.cpp and STEM-N.expected go, and stem.
# Writes the names STEM-N, one a line.

function fail(problem) {
    print FILENAME ":" opened ": " problem > "/dev/stderr"
    failed = 1
    exit 1
}

function write_block(suffix) {
    printf "%s", block > (directory "/" name suffix)
}

function end_block() {
    if (name != "") {
        if (kind != "text")
            fail("a text block must say what the program before writes")
        write_block(".expected")
        name = ""
    } else if (kind == "cpp" && block ~ /int main\(/) {
        name = stem "-" ++count
        block = "#line " (opened + 1) " \"" FILENAME "\"\n" block
        write_block(".cpp")
        print name
    }
}

/^```/ {
    if (!inside) {
        kind = substr($0, 4)
        opened = NR
        block = ""
    } else {
        end_block()
    }
    inside = !inside
    next
}

inside { block = block $0 "\n" }

END {
    if (failed)
        exit 1
    if (inside)
        fail("the block is not closed")
    if (name != "")
        fail("no text block says what the program writes")
}
