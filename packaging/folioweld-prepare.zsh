#compdef folioweld-prepare
# Completion of folioweld-prepare [OPTION]... INPUT OUTPUT for zsh.

_arguments -S \
  '--password-file=[its first line is the password of the input]:file:_files' \
  '(- *)--help[print the help]' \
  '(- *)--version[print the version]' \
  '1:input:_files -g "*.[pP][dD][fF](-.)"' \
  '2:output:_files -g "*.[pP][dD][fF](-.)"'
