#!/usr/bin/env bash
# A real terminal of several widths: progress, keys that stop, jobs in the background, terminals of somebody else.
. "$(dirname "$0")/common.sh"

trap 'tmux_ kill-server 2>/dev/null || true; rm -rf "$folder"' EXIT
tmux_() { tmux -S "$folder/tmux" -f /dev/null "$@"; }
# One server for all terminals: one that ends with its last terminal may be found ending by the next.
tmux_ start-server \; set-option -s exit-empty off

# open_terminal NAME COLUMNS: with a shell; what it shows is also in the file NAME, byte by byte, but a moment later. The
# shell keeps no history: it would write it when the server ends, into a folder that is being removed.
open_terminal() {
  terminal=$1
  tmux_ new-session -d -s "$1" -x "$2" -y 24 "HISTFILE= PS1='\$ ' exec bash --norc --noprofile -i"
  tmux_ pipe-pane -t "$1" "cat >'$folder/work/$1'"
  wait_for shows '^\$'
}
close_terminal() { tmux_ kill-session -t "$terminal"; }

rows() { tmux_ capture-pane -p -t "$terminal" | grep -v '^$' || true; }
tell() {
  [[ -n ${terminal:-} ]] || return
  echo "the terminal \"$terminal\" shows:" && rows
  echo "the last it got:" && tail -c 2000 "$terminal" | cat -v && echo
  echo "temporary files: $(find "$TMPDIR" -type f | wc -l)"
}
shows() { rows | grep -qE -- "$1"; }
type_line() { tmux_ send-keys -t "$terminal" -l -- "$1" && tmux_ send-keys -t "$terminal" Enter; }
press() { tmux_ send-keys -t "$terminal" "$1"; }

# run COMMAND [STATUS]: types it and waits until it has ended, on the screen and in the file. The mark is put together by
# the shell: what is typed does not hold it.
marks=0
run() {
  marks=$((marks + 1))
  type_line "$1; echo 'ma''rk' $marks \$?"
  wait_for shows "^mark $marks ${2:-[0-9]+}$"
  wait_for grep -q "mark $marks [0-9]" "$terminal"
}

# stops_with_control_c: what is said after the key, by program and shell.
stops_with_control_c() {
  press C-c
  wait_for shows 'ended by'
  run '(exit $?)' 130
  if shows '^(Merge|Parsing|Pass) '; then fail "rows are left: $(rows)"; fi
  [[ -z $(ls -A "$TMPDIR") ]] || fail "left over: $(ls -A "$TMPDIR")"
}

# Half a minute of work, whose end nothing here waits for.
mkdir few many
for name in a b c; do document few/$name.pdf $name; done
# shellcheck disable=SC2046 # numbers
document many/0.pdf $(seq 1000)
for i in {1..3999}; do names+=("many/$i.pdf"); done
python3 -c 'import os, sys; [os.link("many/0.pdf", name) for name in sys.argv[1:]]' "${names[@]}"

# drawn ROW...: the screen shows rows like these and no others.
drawn() {
  local found i
  mapfile -t found < <(rows)
  ((${#found[@]} == $#)) || return
  for ((i = 1; i <= $#; ++i)); do [[ ${found[i - 1]} =~ ${!i} ]] || return; done
}
# In whichever round it is by the time somebody looks.
headline='^Merge [0-9]+ of 3999 \(round [0-9]+ of 12\): [0-9]+\.pdf$'
status_rows=('^Parsing file #1: .*\.(pdf|tmp)' '^Parsing file #2: .*\.(pdf|tmp)' '^Pass #[1-4] ')
for columns in 200 60; do
  open_terminal wide-$columns $columns
  type_line 'clear; folioweld out.pdf many'
  wait_for drawn "$headline" "${status_rows[@]}"
  stops_with_control_c
  close_terminal
done
open_terminal narrow 20
type_line 'clear; folioweld out.pdf many'
wait_for drawn '^Merge [0-9]+ of 3999 \('
stops_with_control_c
equal 'how often the narrow terminal got the status lines' "$(grep -c Parsing narrow || true)" 0
close_terminal

# A loop ends with the run that was stopped.
open_terminal loop 80
# shellcheck disable=SC2016 # for the other shell
type_line 'for i in 1 2 3; do folioweld $i.pdf many; done; echo "loop" "ended"'
wait_for shows '^Merge '
stops_with_control_c
equal 'how many runs the loop made' "$(grep -c 'ended by SIGINT; no output was written' loop)" 1
if grep -q 'loop ended' loop; then fail 'the loop went on'; fi
equal 'what the loop wrote' "$(echo [123].pdf)" '[123].pdf'

# Stopped and in the background it draws nothing; in the foreground it draws again, and below what was written meanwhile.
type_line 'clear; folioweld out.pdf many'
wait_for shows '^Pass '
press C-z
wait_for shows 'Stopped'
run 'clear; bg'
temporaries() { find "$TMPDIR" -type f | wc -l; }
before=$(temporaries)
goes_on() { (($(temporaries) > before + 2)); }
wait_for goes_on
if shows '^(Merge|Parsing|Pass) '; then fail "drawn in the background: $(rows)"; fi
type_line 'fg'
wait_for shows '^Merge '
shows '^mark [0-9]+ 0$' || fail "something was overwritten: $(rows)"
shows '^\$ fg$' || fail "something was overwritten: $(rows)"
stops_with_control_c
close_terminal

# A job beside other output, a terminal that cannot move its cursor, and a quiet run draw nothing; others do, and leave nothing.
open_terminal jobs 100
run 'folioweld out.pdf few & seq 5; wait $!'
run 'TERM=dumb folioweld out.pdf few'
run 'TERM= folioweld out.pdf few'
run 'folioweld -q out.pdf few'
run 'folioweld --progress=never out.pdf few'
equal 'what is drawn where nothing is to be' "$(grep -c 'Merge 1 of 2' jobs || true)" 0
run 'folioweld out.pdf few'
grep -q 'Merge 1 of 2 (round 1 of 2): b\.pdf' jobs || fail 'nothing is drawn'
if shows '^(Merge|Parsing|Pass) '; then fail "rows are left: $(rows)"; fi
equal 'the joined documents' "$(words out.pdf)" 'a b c'

# A terminal that is not the controlling one.
other=$(tmux_ display-message -p -t jobs '#{pane_tty}')
lines() { grep -c 'Merge 1 of 2' jobs; }
before=$(lines)
setsid -w folioweld out.pdf few 2>"$other"
run 'true'
equal 'what the other terminal got' "$(lines)" "$before"
setsid -w folioweld --progress=always out.pdf few 2>"$other"
run 'true'
(($(lines) > before)) || fail 'the other terminal got nothing'

# A name does not command the terminal, wherever it comes from.
document $'few/\e[7mturned.pdf' d
printf '%%PDF-1.4\nno comment' >$'few/\e[2Jwiped.pdf'
run "folioweld out.pdf few; find . -name '*missing' -o -name '*wiped.pdf' -print0 | folioweld --files0-from=- out.pdf"
run "printf 'few/\\033[2Jmissing\\0' | folioweld --files0-from=- out.pdf"
run "printf 'x' >list; folioweld --files0-from=\$'\\033[2Jlist' out.pdf"
if grep -qF -e $'\e[2J' -e $'\e[7m' jobs; then fail 'a name commands the terminal'; fi
for shown in 'File: "?[2Jwiped.pdf"  is not acceptable' 'the source "few/?[2Jmissing" cannot be joined' \
  'the list of sources "?[2Jlist" cannot be read'; do
  grep -qF "$shown" jobs || fail "not told: $shown"
done
