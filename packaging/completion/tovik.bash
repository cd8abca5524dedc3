# Completion of the command lines of tovik-host and tovik-cloud for bash, and for zsh by way of
# bashcompinit. Commands, options and most values are what the programs' --help says, so that the
# completion knows what the installed program knows.
# shellcheck shell=bash

# Those of the lines of $2 that begin with $1.
_tovik_reply() {
  local line
  while IFS= read -r line; do
    [[ -z $line || $line != "$1"* ]] || COMPREPLY+=("$(printf '%q' "$line")")
  done <<<"$2"
}

_tovik_files() {
  local line
  while IFS= read -r line; do
    [ -z "$line" ] || COMPREPLY+=("$line")
  done <<<"$(compgen -f -- "$1")"
  compopt -o filenames 2>/dev/null || true
}

# The word to complete, and up to two before it; written so that zsh understands it, too.
_tovik_last_words() {
  local index words=
  for ((index = COMP_CWORD > 2 ? COMP_CWORD - 2 : 0; index <= COMP_CWORD; index++)); do
    words+="${words:+ }${COMP_WORDS[index]}"
  done
  printf '%s' "$words"
}

# More belongs to a value that ends like this.
_tovik_goes_on() {
  compopt -o nospace 2>/dev/null || true
}

# What stands after option $2 in help text $1, such as FILE or KIND:{json,stream}.
_tovik_meaning() {
  # Any other word would be taken for a part of the script.
  [[ $2 =~ ^--?[a-zA-Z0-9-]+$ ]] || return 0
  sed -n "s/^  \(-[a-zA-Z],\)\{0,1\}$2\(,--[a-z0-9-]*\)\{0,1\} \([^ ][^ ]*\).*/\3/p" <<<"$1" | grep -v '^Excludes:\|^Needs:'
}

# Values of $3, an option's meaning, that begin with $1; $2 is the option. Fails if there is none
# because it is a flag.
_tovik_value() {
  local types
  case $2=$3 in
    *=) return 1 ;;
    *=*:'{'*)
      types=${3#*:\{}
      _tovik_reply "$1" "$(tr , '\n' <<<"${types%%\}*}")" ;;
    *=FILE* | *=PATH* | *=PEM*) _tovik_files "$1" ;;
    --type=*)
      types=$(printf '%s\n' {16Bit,32Bit}-{BCD,HEX,INT,UINT})
      _tovik_reply "$1" "$(printf '%s\n' Bit String 32Bit-FLOAT "$types")" ;;
    --link=*) _tovik_reply "$1" "$(printf '%s\n' serial: tcp:)"; _tovik_goes_on ;;
  esac
}

# Names of items in the configuration that the command line names.
_tovik_items() {
  local index config=
  for ((index = 2; index + 1 < COMP_CWORD; index++)); do
    case ${COMP_WORDS[index]} in
      -c | --config) config=${COMP_WORDS[index + 1]} ;;
    esac
  done
  [ -r "$config" ] || return
  grep -o '"name"[[:space:]]*:[[:space:]]*"[^"\\]*"' -- "$config" |
    sed 's/.*:[[:space:]]*"\(.*\)"/\1/'
}

# The commands of program $1.
_tovik_commands() {
  "$1" --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\).*/\1/p'
}

_tovik_host() {
  local program=${COMP_WORDS[0]} command=${COMP_WORDS[1]-} current=${COMP_WORDS[COMP_CWORD]-}
  local previous=${COMP_WORDS[COMP_CWORD - 1]} help positionals items
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    case $current in
      -*) _tovik_reply "$current" "$(_tovik_options "$("$program" --help 2>/dev/null)")" ;;
      *) _tovik_reply "$current" "$(_tovik_commands "$program")" ;;
    esac
    return
  fi

  # bash takes ":" and "=" as words: "serial", ":", "/dev/ttyUSB0".
  case $(_tovik_last_words) in
    'serial :'*) _tovik_files "${current#:}"; return ;;
    *' : '* | *' = '* | *' :' | *' =') return ;;
  esac
  help=$("$program" "$command" --help 2>/dev/null) || return
  ! _tovik_value "$current" "$previous" "$(_tovik_meaning "$help" "$previous")" || return 0
  positionals=$(sed -n '/^Positionals:/,/^$/s/^  \([A-Z]*\).*/\1/p' <<<"$help")
  case $current,$(tr '\n' ' ' <<<"$positionals") in
    -*) _tovik_reply "$current" "$(_tovik_options "$help")" ;;
    *,*ITEM*VALUE*)
      items=$(_tovik_items)
      grep -qxF -- "$previous" <<<"$items" || _tovik_reply "$current" "$items" ;;
    *,*ITEM*) _tovik_reply "$current" "$(_tovik_items)" ;;
    *,*COMMAND*) _tovik_reply "$current" "$(_tovik_commands "$program")" ;;
    *,*IN* | *,*OLD*) _tovik_files "$current" ;;
  esac
}

# All options of help text $1.
_tovik_options() {
  sed -n 's/^  \(-[a-zA-Z],\)\{0,1\}\(--[a-z0-9-]*\).*/\2/p' <<<"$1"
}

_tovik_cloud() {
  local program=${COMP_WORDS[0]} current=${COMP_WORDS[COMP_CWORD]-}
  local previous=${COMP_WORDS[COMP_CWORD - 1]} help faults
  COMPREPLY=()
  help=$("$program" --help 2>/dev/null) || return
  faults=$("$program" --list-faults 2>/dev/null)

  # bash takes ":" and "=" as words: "--fault", "reset", ":", "path", "=", "value".
  case $(_tovik_last_words) in
    *'path = '* | *'path =')
      _tovik_reply "${current#=}" "$(sed -n 's/^  path=\([^ ]*\).*/\1/p' <<<"$faults" | tr '|' '\n')"
      return ;;
    *' : '* | *' :')
      _tovik_reply "${current#:}" "$(sed -n '/^Keys:/,$s/^  \([a-z]*=\).*/\1/p' <<<"$faults")"
      _tovik_goes_on
      return ;;
    *' = '* | *' =') return ;;
  esac
  if [ "$previous" = --fault ]; then
    _tovik_reply "$current" "$(sed -n '/^Faults/,/^Keys/s/^  \([a-z0-9-]*\) .*/\1/p' <<<"$faults")"
    return
  fi
  ! _tovik_value "$current" "$previous" "$(_tovik_meaning "$help" "$previous")" || return 0
  case $current in
    -*) _tovik_reply "$current" "$(_tovik_options "$help")" ;;
    *) _tovik_files "$current" ;;
  esac
}

complete -F _tovik_host tovik-host
complete -F _tovik_cloud tovik-cloud
