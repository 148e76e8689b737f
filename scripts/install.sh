# Installs Debian packages that aren't there yet. Sourced by ./run and ./test.
install_packages() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  local sudo=""
  if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || { echo "Faltam os pacotes: ${missing[*]}. Instale-os como root." >&2; return 1; }
    sudo=sudo
  fi
  echo "Instalando: ${missing[*]}"
  $sudo apt-get update -qq
  $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# What the desk needs to be built and to run.
build_packages=(g++ cmake ninja-build firebird3.0-server-core libfbclient2 firebird-dev libboost1.81-dev
  libsodium-dev libssl-dev libcli11-dev pkg-config libcairo2-dev libxlsxwriter-dev fonts-dejavu-core)
