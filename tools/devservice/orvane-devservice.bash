# Completion of orvane-devservice's options.

_orvane_devservice() {
  COMPREPLY=()
  case $3 in
    --port | --token | --code | --picture-text | --seed) ;;
    --listen) mapfile -t COMPREPLY < <(compgen -W '127.0.0.1 0.0.0.0 [::]' -- "$2") ;;
    *)
      local options='--port --listen --token --code --picture-text --seed --quiet --help --version'
      mapfile -t COMPREPLY < <(compgen -W "$options" -- "$2")
      ;;
  esac
}
complete -F _orvane_devservice orvane-devservice
