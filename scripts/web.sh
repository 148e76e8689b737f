# Builds the page into web/dist. Sourced by ./run and ./test, after scripts/install.sh.
build_web() {
  command -v npm >/dev/null || install_packages nodejs npm
  (cd web && npm ci --silent && npm run --silent build)
}
