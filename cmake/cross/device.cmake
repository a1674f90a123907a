# The handheld: an ARMv4T processor under Windows CE 5.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-none-eabi-gcc)
set(CMAKE_CXX_COMPILER arm-none-eabi-g++)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
# The platform's compiler has signed characters and enumerations of 32 bits.
set(CMAKE_CXX_FLAGS_INIT "-march=armv4t -marm -mthumb-interwork -fsigned-char -fno-short-enums -funwind-tables")
set(CMAKE_ASM_FLAGS_INIT "-march=armv4t -marm")
