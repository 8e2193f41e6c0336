#!/usr/bin/env bash
# source-files.sh PATTERN...: the files of the project that match, one a line, new ones that nobody has
# committed yet included and deleted ones left out. A pattern is a git pathspec such as 'engine/*.h'.
set -euo pipefail
cd "$(dirname "$(dirname "$(readlink -f "$0")")")"

# A checkout may belong to another user than the one who tests it, in a container for example.
git -c safe.directory='*' ls-files --cached --others --exclude-standard -- "$@" |
  while IFS= read -r file; do
    if [[ -f $file ]]; then printf '%s\n' "$file"; fi
  done
