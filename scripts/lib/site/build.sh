#!/usr/bin/env bash
# scripts/lib/site/build.sh OUTPUT
#
# Builds the documents as static pages in OUTPUT/html: the guide with mkdocs, the API reference with
# Doxygen. Then follows all links between the pages, and looks for public functions that are not in
# docs/guarantees.md. A warning of a tool, a broken link and a missing function are errors. Installs
# nothing. The status is 77, which means skipped to ctest, if a tool is missing.
set -euo pipefail

here=$(cd "$(dirname "$(readlink -f "$0")")" && pwd -P)
root=$(cd "$here/../../.." && pwd -P)
output=${1:?takes one argument, the directory to write to}

# missing_tool: the first one that is not installed; nothing if all are
missing_tool() {
    local tool
    for tool in cmake doxygen mkdocs python3; do
        command -v "$tool" >/dev/null || { echo "$tool" && return; }
    done
    [[ -e /usr/share/doxygen-awesome-css/doxygen-awesome.css ]] || echo doxygen-awesome-css
    mkdocs build --help | grep material >/dev/null || echo mkdocs-material # lists themes
}

missing=$(missing_tool | head -n 1)
if [[ -n $missing ]]; then
    printf 'skipped: %s is not installed; scripts/docs installs it\n' "$missing"
    exit 77
fi
mkdir -p "$output"
output=$(cd "$output" && pwd -P)

# the settings of Doxygen that depend on the machine
doxygen_paths() {
    cmake -P "$here/public_headers.cmake" | sed "s|.*|INPUT += \"$root/&\"|"
    cat <<END
INPUT += "$here/api.md"
INPUT_FILTER = "awk -f '$here/banner.awk'"
HTML_EXTRA_STYLESHEET += "$here/api.css"
USE_MDFILE_AS_MAINPAGE = "$here/api.md"
OUTPUT_DIRECTORY = "$output"
HTML_OUTPUT = pages/api
XML_OUTPUT = xml
STRIP_FROM_PATH = "$root/platform" "$root/messaging" "$root"
STRIP_FROM_INC_PATH = "$root/platform" "$root/messaging" "$root"
END
}

# Doxygen links to the list of nested classes even if it leaves that out, since all are private.
remove_links_to_private_classes() {
    grep -L 'name="nested-classes"' "$output"/pages/api/{class,struct}*.html |
        xargs sed -i -E 's/<a href="#nested-classes">[^<]*<\/a>( &#124;)?//'
}

rm -rf "$output"/{pages,html,xml,mkdocs.yml}
mkdir "$output/pages"
{
    cat "$here/Doxyfile"
    doxygen_paths
} | doxygen -
remove_links_to_private_classes
python3 -B "$here/pages.py" "$root" "$output"
cp "$here/guide.css" "$output/pages/"
mkdocs build --config-file "$output/mkdocs.yml"
python3 -B "$here/links.py" "$output/html"
python3 -B "$here/guarantees.py" "$output/xml" "$root/docs/guarantees.md"
