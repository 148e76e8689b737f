# Installs Debian packages that aren't there yet. Sourced by ./run and ./test.

# apt-get, once no other process holds its locks: it is asked again for ten minutes.
apt_get() {
  local end=$((SECONDS + 600)) told="" output
  until output=$("${as_root[@]}" env LC_ALL=C DEBIAN_FRONTEND=noninteractive apt-get -qq -o Acquire::Retries=3 \
    -o DPkg::Lock::Timeout=5 "$@" 2>&1); do
    if [[ ! "$output" =~ (Could not get lock|Unable to acquire|Unable to lock) ]] || [ $SECONDS -ge $end ]; then
      echo "$output" >&2
      return 1
    fi
    [ -n "$told" ] || echo "Outro processo usa o apt-get: à espera dele, por até dez minutos." >&2
    told=1
    sleep 3
  done
}

install_packages() {
  local missing=() package as_root=()
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || { echo "Faltam os pacotes: ${missing[*]}. Instale-os como root." >&2; return 1; }
    as_root=(sudo)
  fi
  echo "Instalando: ${missing[*]}"
  apt_get update && apt_get install -y --no-install-recommends "${missing[@]}"
}

# What the desk needs to be built and to run.
build_packages=(g++ cmake ninja-build firebird3.0-server-core libfbclient2 firebird-dev libboost1.81-dev
  libsodium-dev libssl-dev libcli11-dev pkg-config libcairo2-dev libxlsxwriter-dev libzip-dev zlib1g-dev
  libexpat1-dev fonts-dejavu-core)
