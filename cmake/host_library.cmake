# The library as a shared object of the host.
# Linked without the host's start files and C++ runtime: nothing runs at load but the entry.
function(pal_link_library name)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES PREFIX "" LINKER_LANGUAGE C)
  target_link_options(${name} PRIVATE -nostartfiles -Wl,--wrap=malloc -Wl,--wrap=free
                      -Wl,-Bsymbolic -Wl,--as-needed ${PAL_EXPORT_ALIASES})
  if(PAL_COVERAGE)
    target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/coverage_counters.c)
    target_link_options(${name} PRIVATE -fprofile-instr-generate -Wl,--defsym=__dso_handle=0)
  endif()
endfunction()

# Nothing is visible from outside but the exports.
function(pal_link_closed_library name)
  pal_link_library(${name} ${ARGN})
  target_link_options(${name} PRIVATE -Wl,--version-script=${PAL_GENERATED}/exports.map)
  set_target_properties(${name} PROPERTIES LINK_DEPENDS ${PAL_GENERATED}/exports.map)
endfunction()

# The library's own code, with more objects.
function(pal_add_library name)
  pal_link_library(${name} $<TARGET_OBJECTS:pal_objects> ${ARGN})
endfunction()

pal_link_closed_library(DVLORQPAL $<TARGET_OBJECTS:pal_objects>)
if(NOT PAL_INSTRUMENTED)
  add_custom_command(TARGET DVLORQPAL POST_BUILD VERBATIM
    COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/cmake/check_library.py
            $<TARGET_FILE:DVLORQPAL> ${PROJECT_SOURCE_DIR}
    COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/cmake/check_includes.py ${PROJECT_SOURCE_DIR})
endif()
