# The filter through which Doxygen reads a header. The comment at the top says what the header is
# for. Where the header has a class that is named after it, that comment belongs to the class, too.

{ lines[NR] = $0 }

# The last namespace before the class, and the class itself
!name && /^namespace [a-z_:]+ \{/ && !/detail/ { scope = $2 }
!name && /^(class|struct) / && !/;$/ {
    title = FILENAME
    sub(/.*\//, "", title)
    sub(/\.hpp$/, "", title)
    if ($0 ~ ("[ )]" title "( |$|;)"))
        name = $1 " " outer(scope) "::" title
}
/^namespace [a-z_:]+ \{/ && $2 == "connector" { nested = 1 }

# In a file with "namespace connector {", a second namespace stands inside it.
function outer(scope) {
    return nested && scope != "connector" ? "connector::" scope : scope
}

END {
    print "/// @" (name ? name : "file")
    for (i = 1; i <= NR; ++i)
        print lines[i]
}
