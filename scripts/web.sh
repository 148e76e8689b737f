# Builds the page into web/dist. Sourced by ./run and ./test, after scripts/install.sh.
install_npm() {
  command -v npm >/dev/null || install_packages nodejs npm
}

# The registry doesn't always answer: it is asked three times.
fetch_web() {
  local attempt
  for attempt in 1 2 3; do
    (cd web && npm ci --silent) && return 0
    [ "$attempt" -eq 3 ] || { echo "As bibliotecas da página não vieram: nova tentativa em $((attempt * 10)) s." >&2; sleep $((attempt * 10)); }
  done
  return 1
}

build_web() {
  install_npm && fetch_web && (cd web && npm run --silent build)
}
