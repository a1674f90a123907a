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

# build PRESET [TARGET...]: installs and configures where need be, builds, and is silent unless it fails.
build() {
  local preset=$1 log
  shift
  install_packages "${packages[@]}"
  log=build/$preset.log
  mkdir -p build
  if [ ! -f "build/$preset/build.ninja" ]; then
    echo "Configuring $preset"
    cmake --preset "$preset" >"$log" 2>&1 || { cat "$log"; exit 1; }
  fi
  cmake --build --preset "$preset" ${1:+--target "$@"} >"$log" 2>&1 || { cat "$log"; exit 1; }
}
