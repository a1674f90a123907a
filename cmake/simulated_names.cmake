# On a PC with Windows the simulated device's calls get names that are not also Windows' own: its sources, and those
# that call it, see PAL_SIMULATED_NAMES first. The tests' coredll.dll gives the calls their own names again, for the
# library, and makes the registry's calls on Windows too.
set(PAL_SIMULATED_NAMES ${PAL_GENERATED}/simulated_names.h)
# The functions of the C runtime with 16-bit characters are C++ functions; of some others the host's own serve.
set(PAL_FORWARDED malloc=__wrap_malloc free=__wrap_free wcslen=_Z6wcslenPKDs mbstowcs=_Z8mbstowcsPDsPKcy
    wcstombs=_Z8wcstombsPcPKDsy _wcsicmp=_Z17Simulated_wcsicmpPKDsS0_ _wcsnicmp=_Z18Simulated_wcsnicmpPKDsS0_y)
set(renamed "")
set(forwarded "")
string(REGEX MATCHALL "\\([A-Za-z_0-9]+" names "${PAL_IMPORTS}(GetCurrentProcessId")
foreach(name IN LISTS names)
  string(SUBSTRING ${name} 1 -1 name)
  string(REGEX MATCH "(^|;)${name}=([^;]+)" special "${PAL_FORWARDED}")
  if(special)
    string(APPEND forwarded "    ${name} = libsimdevice.${CMAKE_MATCH_2}\n")
  elseif(name MATCHES "^Reg" AND NOT name STREQUAL "RegCloseKey")
    string(APPEND forwarded "    ${name} = Compare${name}\n")
  elseif(name MATCHES "^(mem|str)")
    string(APPEND forwarded "    ${name} = msvcrt.${name}\n")
  else()
    string(APPEND forwarded "    ${name} = libsimdevice.Simulated${name}\n")
  endif()
  if(NOT name MATCHES "^[a-z]" OR name MATCHES "^wave")
    string(APPEND renamed "#define ${name} Simulated${name}\n")
  endif()
endforeach()
# What declares or calls Windows' functions itself comes first.
string(PREPEND renamed "#include <cstdio>\n#include <cstring>\n#include <cwchar>\n"
       "#if __has_include(<gtest/gtest.h>)\n#include <gtest/gtest.h>\n#endif\n")
file(CONFIGURE OUTPUT ${PAL_SIMULATED_NAMES} CONTENT "${renamed}" @ONLY)
file(CONFIGURE OUTPUT ${PAL_GENERATED}/coredll.def CONTENT "LIBRARY coredll.dll\nEXPORTS\n${forwarded}" @ONLY)
