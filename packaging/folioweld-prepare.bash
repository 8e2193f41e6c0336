# Completion of folioweld-prepare [OPTION]... INPUT OUTPUT for bash.
# shellcheck shell=bash disable=SC2034,SC2207 # the functions of bash-completion read and write these variables
_folioweld_prepare() {
  local cur prev words cword split
  _init_completion -s || return
  [[ $prev == --password-file ]] && _filedir && return
  if [[ $cur == -* ]]; then
    COMPREPLY=($(compgen -W '--password-file= --help --version' -- "$cur"))
    [[ ${COMPREPLY[0]-} == *= ]] && compopt -o nospace
    return
  fi
  _filedir pdf
} &&
  complete -F _folioweld_prepare folioweld-prepare
