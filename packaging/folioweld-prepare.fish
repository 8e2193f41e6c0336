# Completion of folioweld-prepare [OPTION]... INPUT OUTPUT for fish.
complete -c folioweld-prepare -f
complete -c folioweld-prepare -r -F -l password-file -d 'Its first line is the password of the input'
complete -c folioweld-prepare -l help -d 'Print the help'
complete -c folioweld-prepare -l version -d 'Print the version'
complete -c folioweld-prepare -a '(__fish_complete_path (commandline -ct) | string match -r --entire "(?i)(?:\.pdf|/)(?:\t.*)?\$")'
