# A PC: 64-bit Windows.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_OBJCOPY x86_64-w64-mingw32-objcopy)
# Else the compiler's headers declare the C runtime's functions as imports.
set(CMAKE_CXX_FLAGS_INIT "-D_CRTIMP=")
