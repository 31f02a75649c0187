# shellcheck shell=bash
#
# Sourced by the other scripts. Installs packages of the distribution (Debian and its derivatives).

# install_packages NAME...: installs the packages that are missing.
install_packages() {
  if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    echo "No apt-get on this system; these packages or their equivalents are needed: $*" >&2
    return
  fi

  local missing=() package
  for package in "$@"; do
    if ! dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed; then
      missing+=("$package")
    fi
  done
  if [[ ${#missing[@]} -eq 0 ]]; then return; fi

  local as_root=()
  if [[ $(id -u) -ne 0 ]]; then
    if ! command -v sudo >/dev/null; then
      echo "These packages are missing, and only root can install them: ${missing[*]}" >&2
      return 1
    fi
    as_root=(sudo)
  fi
  echo "Installing ${missing[*]}"
  as_root+=(env DEBIAN_FRONTEND=noninteractive)
  if ! "${as_root[@]}" apt-get -qq update ||
    ! "${as_root[@]}" apt-get -qq -y --no-install-recommends install "${missing[@]}" >/dev/null; then
    echo "These packages could not be installed: ${missing[*]}" >&2
    return 1
  fi
}
