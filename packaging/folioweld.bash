# Completion of folioweld OUTPUT FOLDER for bash: a PDF file or a folder on the way to one, then a folder.
# shellcheck shell=bash disable=SC2034 # the functions of bash-completion read and write these variables
_folioweld() {
  local cur prev words cword
  _init_completion -n '|' || return
  # The form with a bar is one quoted text, of which nothing is completed.
  [[ ${words[*]} == *'|'* ]] && return
  case $cword in
    1) _filedir pdf ;;
    2) _filedir -d ;;
  esac
} &&
  complete -F _folioweld folioweld
