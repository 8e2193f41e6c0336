# Completion of folioweld [OPTION]... OUTPUT SOURCE... for bash: options first, then PDF files and folders.
# shellcheck shell=bash disable=SC2034,SC2207 # the functions of bash-completion read and write these variables
_folioweld() {
  local cur prev words cword split
  _init_completion -s -n '|' || return
  # The form with a bar is one quoted text, of which nothing is completed.
  [[ ${words[*]} == *'|'* ]] && return
  case $prev in
    --order) COMPREPLY=($(compgen -W 'name name-reversed date date-reversed' -- "$cur")) && return ;;
    --progress) COMPREPLY=($(compgen -W 'auto never always' -- "$cur")) && return ;;
    --files0-from) _filedir && return ;;
    --bookmarks) COMPREPLY=($(compgen -W 'documents own both none' -- "$cur")) && return ;;
    --title) return ;;
  esac
  local i
  for ((i = 1; i < cword; ++i)); do
    # After the output nothing is an option.
    [[ ${words[i]} == -- || ${words[i]} != -* ]] && { _filedir pdf && return; }
  done
  if [[ $cur == -* ]]; then
    COMPREPLY=($(compgen -W '--order= --files0-from= --prepare --carry --bookmarks= --title= --verbose --quiet --progress= --help --version' -- "$cur"))
    [[ ${COMPREPLY[0]-} == *= ]] && compopt -o nospace
    return
  fi
  _filedir pdf
} &&
  complete -F _folioweld folioweld
