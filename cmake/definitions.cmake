# What the headers, the export list and the import lists say, as the forms that linker and compiler take.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(PAL_GENERATED ${CMAKE_BINARY_DIR}/generated)

# contract.inc, exports.inc and exports.map; a header that does not keep its form ends the build here.
file(GLOB PUBLIC_HEADERS CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/*.h)
set(contract ${PROJECT_SOURCE_DIR}/cmake/contract.py)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
             ${PUBLIC_HEADERS} ${PROJECT_SOURCE_DIR}/exports.def ${contract})
execute_process(COMMAND ${Python3_EXECUTABLE} ${contract} ${PROJECT_SOURCE_DIR} ${PAL_GENERATED}
                ERROR_VARIABLE faults RESULT_VARIABLE result)
if(result)
  message(FATAL_ERROR "include/ and exports.def have faults:\n${faults}")
endif()
include(${PAL_GENERATED}/exports.cmake)

# The names of a module-definition file: the first word of each line behind EXPORTS.
set(PAL_IMPORTS "")
foreach(library coredll iphlpapi bthutil)
  set(file ${PROJECT_SOURCE_DIR}/platform/imports/${library}.def)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  file(STRINGS ${file} lines REGEX "^ +[A-Za-z_]")
  foreach(line IN LISTS lines)
    string(REGEX MATCH "[A-Za-z_0-9]+" name "${line}")
    string(APPEND PAL_IMPORTS "SIM_CALL(${name})\n")
  endforeach()
endforeach()
file(CONFIGURE OUTPUT ${PAL_GENERATED}/calls.inc CONTENT "${PAL_IMPORTS}" @ONLY)

# The platform's calls as a program has them where no other <windows.h> is: on the simulated device.
set(PAL_PLATFORM_HEADERS ${PAL_GENERATED}/platform)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/platform/wince.h)
file(READ ${PROJECT_SOURCE_DIR}/platform/wince.h wince)
string(REPLACE "#include \"../include/" "#include \"" wince "${wince}")
file(CONFIGURE OUTPUT ${PAL_PLATFORM_HEADERS}/windows.h CONTENT "${wince}" @ONLY)
