#!/usr/bin/env bash
# Pipes that end early, a full disk, closed streams, and what goes to which of them.
. "$(dirname "$0")/common.sh"

mkdir docs
for name in a b c; do document "docs/$name.pdf" $name; done

folioweld --help | head -n 1 >first
equal 'the first line of the help' "$(<first)" 'Usage: folioweld [OPTION]... [--] OUTPUT SOURCE...'
equal 'the columns of the help' "$(folioweld --help | awk '{ if (length > most) most = length } END { print (most < 80) }')" 1
(($(folioweld --help | wc -l) <= 24)) || fail 'the help is longer than a screen'
equal 'the word for the version' "$(folioweld -V | cut -d ' ' -f 1)" folioweld

for option in --help --version; do
  code=0
  folioweld $option >/dev/full 2>said || code=$?
  equal "the status of $option on a full disk" $code 1
  equal 'what is said of it' "$(<said)" 'folioweld: standard output cannot be written: No space left on device'
done

# A pipe whose reader is gone for sure.
exec 3> >(:)
wait $!
code=0
folioweld --help >&3 2>said || code=$?
equal 'the status without a reader' $code 1
equal 'what is said of it' "$(<said)" 'folioweld: standard output cannot be written: Broken pipe'
status 0 bash -c 'folioweld -v out.pdf docs 2>&3'
equal 'what is joined without a reader of the log' "$(words out.pdf)" 'a b c'
exec 3>&-

# The log goes to head, which takes a line of it; the run goes on to its end.
folioweld -v out2.pdf docs 2>&1 | head -n 1 >first
equal 'the first line of the log' "$(<first)" '[Folioweld-Form_Activate]=> Command line: -v out2.pdf docs'
cmp out.pdf out2.pdf
folioweld -v out2.pdf docs >output 2>log
equal 'what is on standard output' "$(<output)" ''
equal 'how many lines of the log come twice' "$(sort log | uniq -d | grep -c 'File name' || true)" 0
equal 'control characters in the log' "$(grep -c $'[\x01-\x08\x0b-\x1f]' log || true)" 0

# Nothing is drawn where standard error is no terminal, unless it is asked for.
equal 'what a run says that went well' "$(folioweld out.pdf docs 2>&1)" ''
# The same rows again where a merge takes long.
folioweld --progress=always out.pdf docs 2>drawn
grep -q 'Merge 1 of 2' drawn || fail 'nothing is drawn into a file'
equal 'what a quiet run says' "$(folioweld -q --progress=always out.pdf docs 2>&1)" ''
rm out.pdf
status 0 folioweld out.pdf docs <&- >&- 2>&-
equal 'what is joined with closed streams' "$(words out.pdf)" 'a b c'

# A reason is two lines at most, and statuses tell scripts what they need.
status 2 folioweld --frobnicate out.pdf docs
equal 'the lines about an unknown option' "$(said | wc -l)" 1
status 1 folioweld out.pdf docs missing
equal 'the lines about a missing source' "$(said | wc -l)" 1
status 1 folioweld docs docs
equal 'the lines about an output that is a folder' "$(said | wc -l)" 2
mkfifo pipe
status 1 folioweld out.pdf pipe
equal 'what is said of a pipe' "$(said)" 'folioweld: the source "pipe" cannot be joined: it is neither a file nor a folder'
status 2 folioweld
equal 'the lines about a start without a screen' "$(said | wc -l)" 1
