# What the export list and the import lists say, as the forms that linker and compiler take.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(PAL_GENERATED ${CMAKE_BINARY_DIR}/generated)

# The names of a module-definition file: the first word of each line behind EXPORTS.
function(pal_read_names file result)
  set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  file(STRINGS ${file} lines REGEX "^ +[A-Za-z_]")
  set(names "")
  foreach(line IN LISTS lines)
    string(REGEX MATCH "[A-Za-z_0-9]+" name "${line}")
    list(APPEND names ${name})
  endforeach()
  set(${result} ${names} PARENT_SCOPE)
endfunction()

function(pal_write_names file prefix)
  set(text "")
  foreach(name IN LISTS ARGN)
    string(APPEND text "${prefix}(${name})\n")
  endforeach()
  file(CONFIGURE OUTPUT ${file} CONTENT "${text}" @ONLY)
endfunction()

pal_read_names(${PROJECT_SOURCE_DIR}/exports.def PAL_EXPORTS)
pal_write_names(${PAL_GENERATED}/exports.inc PAL_EXPORT ${PAL_EXPORTS})
list(JOIN PAL_EXPORTS "; " exports)
# "Second = First": one function under two names.
set(PAL_EXPORT_ALIASES "")
file(STRINGS ${PROJECT_SOURCE_DIR}/exports.def lines REGEX "^ +[A-Za-z_0-9]+ *= *[A-Za-z_0-9]+")
foreach(line IN LISTS lines)
  string(REGEX REPLACE "^ +([A-Za-z_0-9]+) *= *([A-Za-z_0-9]+).*" "\\1=\\2" alias "${line}")
  list(APPEND PAL_EXPORT_ALIASES "-Wl,--defsym=${alias}")
endforeach()

# The entry is found by name here; on the device the loader knows it.
file(CONFIGURE OUTPUT ${PAL_GENERATED}/exports.map
     CONTENT "{ global: DllMain; CountersBegin; CountersEnd; ${exports}; local: *; };\n" @ONLY)

set(PAL_IMPORTS "")
foreach(library coredll iphlpapi bthutil)
  pal_read_names(${PROJECT_SOURCE_DIR}/platform/imports/${library}.def names)
  list(APPEND PAL_IMPORTS ${names})
endforeach()
pal_write_names(${PAL_GENERATED}/calls.inc SIM_CALL ${PAL_IMPORTS})
