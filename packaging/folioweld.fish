# Completion of folioweld [OPTION]... OUTPUT SOURCE... for fish: options first, then PDF files and folders.
complete -c folioweld -f
complete -c folioweld -x -l order -a 'name name-reversed date date-reversed' -d 'Order of the documents of a folder'
complete -c folioweld -r -F -l files0-from -d 'More sources, each ended by a NUL'
complete -c folioweld -s v -l verbose -d 'Print the log'
complete -c folioweld -s q -l quiet -d 'No progress, and no word where everything is joined'
complete -c folioweld -x -l progress -a 'auto never always' -d 'When progress is drawn'
complete -c folioweld -s h -l help -d 'Print the help'
complete -c folioweld -s V -l version -d 'Print the version'
complete -c folioweld -k -a '(__fish_complete_suffix .pdf)'
