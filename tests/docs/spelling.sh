#!/usr/bin/env bash
# tests/docs/spelling.sh ROOT
#
# Looks for common misspellings in all files of the project. tests/docs/spelling.txt lists the words
# that are right, or wrong on purpose. The status is 77, which means skipped to ctest, if codespell
# is not installed.
set -euo pipefail

if ! command -v codespell >/dev/null; then
    echo 'skipped: codespell is not installed'
    exit 77
fi
cd "$1"
codespell --ignore-words tests/docs/spelling.txt --skip './build,./.git,./.cache' .
