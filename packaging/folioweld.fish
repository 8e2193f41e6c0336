# Completion of folioweld [OPTION]... OUTPUT SOURCE... for fish: options first, then PDF files and folders.

# After the output nothing is an option.
function __folioweld_takes_options
    for word in (commandline -opc)[2..]
        string match -q -- '-?*' $word; and test $word != --; or return 1
    end
end

function __folioweld_documents
    __fish_complete_path (commandline -ct) | string match -r --entire '(?i)(?:\.pdf|/)(?:\t.*)?$'
end

complete -c folioweld -f
complete -c folioweld -n __folioweld_takes_options -x -l order -a 'name name-reversed date date-reversed' -d 'Order of the documents of a folder'
complete -c folioweld -n __folioweld_takes_options -r -F -l files0-from -d 'More sources, each ended by a NUL'
complete -c folioweld -n __folioweld_takes_options -l prepare -d 'Make joinable first what is not'
complete -c folioweld -n __folioweld_takes_options -l carry -d 'Keep the outlines, forms and names of all documents'
complete -c folioweld -n __folioweld_takes_options -x -l bookmarks -a 'documents own both none' -d 'With --carry: what the outline holds'
complete -c folioweld -n __folioweld_takes_options -x -l title -d 'With --carry: the title of the output'
complete -c folioweld -n __folioweld_takes_options -s v -l verbose -d 'Print the log'
complete -c folioweld -n __folioweld_takes_options -s q -l quiet -d 'No progress, and no word where everything is joined'
complete -c folioweld -n __folioweld_takes_options -x -l progress -a 'auto never always' -d 'When progress is drawn'
complete -c folioweld -n __folioweld_takes_options -s h -l help -d 'Print the help'
complete -c folioweld -n __folioweld_takes_options -s V -l version -d 'Print the version'
complete -c folioweld -a '(__folioweld_documents)'
