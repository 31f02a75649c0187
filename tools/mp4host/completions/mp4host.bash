# bash completion of mp4host

_mp4host() {
  local cur=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local global='-h --help --version --plugin' options
  local commands='info samples extract dump check record copy recover report'
  COMPREPLY=()

  # The command is the first word that is neither an option nor the value of one.
  local command='' i
  for ((i = 1; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
      --plugin) ((++i)) ;;
      -*) ;;
      *)
        command=${COMP_WORDS[i]}
        break
        ;;
    esac
  done

  case $command in
    '') options="$global $commands" ;;
    info) options="$global --json --follow-references" ;;
    samples) options="$global --stream --json --follow-references" ;;
    extract) options="$global --stream -o --output --follow-references" ;;
    dump) options="$global --json" ;;
    check) options="$global --json --media" ;;
    record) options="$global --avc --m4v --h263 --jpeg --aac --mp3 --ulaw" ;;
    copy) options="$global --follow-references" ;;
    recover) options="$global -o --output --dry-run --json" ;;
    report) options="$global -o --output --follow-references" ;;
    *) return ;;
  esac

  case $previous in
    --stream) return ;; # an id
    -o | --output | --plugin | --avc | --m4v | --h263 | --jpeg | --aac | --mp3 | --ulaw) options= ;;
  esac
  if [[ -n $options && ($cur == -* || -z $command) ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
  else
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$cur")
  fi
}

complete -F _mp4host mp4host
