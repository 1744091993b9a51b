# Completion of orvane-signin's options and their values.

_orvane_signin() {
  local word=$2 before=$3 kind
  # An option and its value are three words where "=" joins them.
  [[ $word == = ]] && word=
  [[ $before == = ]] && before=${COMP_WORDS[COMP_CWORD - 2]}
  COMPREPLY=()
  case $before in
    --only) kind=(-W 'picture code login') ;;
    --picture | --har)
      kind=(-f)
      compopt -o filenames
      ;;
    --connect)
      kind=(-A hostname -S :)
      compopt -o nospace
      ;;
    --mobile | --captcha | --code | --client-id | --proxy) return ;;
    *)
      kind=(-W '--connect --live --proxy --mobile --captcha --code --client-id --picture --only --auto --json
        --trace --har --unmasked --help --version')
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen "${kind[@]}" -- "$word")
}
complete -F _orvane_signin orvane-signin
