# Completion of bash for palsim and dcecfg. The tool itself says what its words can be; files are left to bash.
_palsim() {
  local IFS=$'\n'
  COMPREPLY=($("${1/#\~/$HOME}" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null))
  if [ "$COMP_CWORD" -eq 1 ] || [ "$3" = --device ] || [ "$3" = --sample ]; then
    compopt -o plusdirs  # a device is a folder
  fi
}
complete -o default -o filenames -F _palsim palsim dcecfg
