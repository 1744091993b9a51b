# Completion of orvane-devservice's options.

_orvane_devservice() {
  COMPREPLY=()
  [[ $3 == --port ]] || mapfile -t COMPREPLY < <(compgen -W '--port --quiet --help --version' -- "$2")
}
complete -F _orvane_devservice orvane-devservice
