# SPDX-License-Identifier: MIT
# What the scripts share; read with `.` by a script in scripts/, which has `set -eu`.

root=$(cd "$(dirname "$0")/.." && pwd)

say() { printf '\n== %s\n' "$*"; }

fail() {
  printf '%s\n' "$*" >&2
  exit 1
}

# A package is there when what it is wanted for is: some systems have it from elsewhere.
has_package() {
  case $1 in
    clang | clang-format | clang-tidy | cmake | gcovr | gfortran | git | g++ | pkg-config | python3)
      command -v "$1" ;;
    gnuplot-nox) command -v gnuplot ;;
    ninja-build) command -v ninja ;;
    *) dpkg-query -W -f '${Status}' "$1" | grep -qx 'install ok installed' ;;
  esac >/dev/null 2>&1
}

# Becomes root without a question that nobody is there to answer; fails if there is no way.
as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif [ -t 0 ]; then
    sudo "$@"
  else
    sudo -n "$@"
  fi
}

# Installs those of the packages that are missing, or says which they are.
need_packages() {
  missing=
  for package; do
    has_package "$package" || missing="$missing $package"
  done
  [ -n "$missing" ] || return 0

  say "Installing what is missing:$missing"
  # Unquoted: one word a package.
  if as_root apt-get -q update &&
    as_root env DEBIAN_FRONTEND=noninteractive \
      apt-get -q install -y --no-install-recommends $missing; then
    return 0
  fi
  fail "These packages are needed and could not be installed from here. As root:
  apt-get install$missing"
}

# Configures and builds a preset of CMakePresets.json; further arguments go to the configuration.
build_preset() {
  preset=$1
  shift
  say "Building $preset"
  cmake --preset "$preset" "$@"
  cmake --build --preset "$preset"
}
