# Sourced by what runs programs for Windows: Wine with a folder of its own, without a display, and with the compiler's
# libraries.
export WINEPREFIX=$PWD/build/windows/prefix WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='
WINEPATH="$(dirname "$(x86_64-w64-mingw32-g++-posix -print-file-name=libstdc++-6.dll)");/usr/x86_64-w64-mingw32/lib"
export WINEPATH
unset DISPLAY WAYLAND_DISPLAY WINEARCH
