#compdef folioweld
# Completion of folioweld [OPTION]... OUTPUT SOURCE... for zsh: options first, then PDF files and folders.

_arguments -S -A '-*' \
  '--order=[order of the documents of a folder]:order:(name name-reversed date date-reversed)' \
  '--files0-from=[more sources, each ended by a NUL]:file:_files' \
  '--prepare[make joinable first what is not]' \
  '--carry[keep the outlines, forms and names of all documents]' \
  '--bookmarks=[with --carry, what the outline holds]:outline:(documents own both none)' \
  '--title=[with --carry, the title of the output]:title: ' \
  '(-v --verbose -q --quiet)'{-v,--verbose}'[print the log]' \
  '(-v --verbose -q --quiet)'{-q,--quiet}'[no progress, and no word where everything is joined]' \
  '--progress=[when progress is drawn]:when:(auto never always)' \
  '(- *)'{-h,--help}'[print the help]' \
  '(- *)'{-V,--version}'[print the version]' \
  '1:output:_files -g "*.[pP][dD][fF](-.)"' \
  '*:source:_files -g "*.[pP][dD][fF](-.) *(-/)"'
