# Sourced by the scripts at the root: what they install and build with.
packages=(  # of every build
  g++ clang clang-format clang-tidy libclang-rt-dev cmake ninja-build python3 binutils
  libfmt-dev libtomlplusplus-dev libcli11-dev libgtest-dev libssl-dev libedit-dev
)

# install_packages PACKAGE...: those that are not there yet.
install_packages() {
  local missing=() package
  for package in "$@"; do
    dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null |
      grep --quiet '^installed$' || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  if [ "$(id -u)" -ne 0 ]; then
    echo "Missing packages; as root: apt-get install ${missing[*]}" >&2
    exit 2
  fi
  echo "Installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# What builds the library for a PC, and runs it.
install_windows_packages() {
  install_packages g++-mingw-w64-x86-64-posix wine wine64
}

# configure PRESET: installs what is missing, and configures a build that is not there yet.
configure() {
  local log=build/$1.log
  install_packages "${packages[@]}"
  mkdir -p build
  [ ! -f "build/$1/build.ninja" ] || return 0
  echo "Configuring $1"
  cmake --preset "$1" >"$log" 2>&1 || { cat "$log"; exit 1; }
}

# build PRESET [TARGET...]: configures where need be, builds, and is silent unless it fails.
build() {
  local preset=$1 log=build/$1.log
  shift
  configure "$preset"
  cmake --build --preset "$preset" ${1:+--target "$@"} >"$log" 2>&1 || { cat "$log"; exit 1; }
}
