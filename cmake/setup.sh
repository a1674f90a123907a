# Sourced by the scripts at the root: what they install and build with.
packages=(  # of every build
  g++ clang clang-format clang-tidy libclang-rt-dev cmake ninja-build python3 binutils
  libfmt-dev libtomlplusplus-dev libcli11-dev libgtest-dev libboost-dev libedit-dev
  nlohmann-json3-dev libpugixml-dev python3-pytest go-md2man pkgconf
)
device_packages=(  # of the build for the handheld
  gcc-arm-none-eabi libstdc++-arm-none-eabi-newlib python3-pyelftools python3-pefile llvm
)
windows_packages=(g++-mingw-w64-x86-64-posix wine wine64 googletest)  # of the build for a PC, and of its tests
device_test_packages=(g++-arm-linux-gnueabi qemu-user googletest)  # of the tests that run its DLL

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
