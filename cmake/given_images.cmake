# The DLLs that another build has made, in place of libraries of this build.
set_target_properties(pal_objects PROPERTIES EXCLUDE_FROM_ALL ON)
file(MAKE_DIRECTORY ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

set(PAL_IMAGE_FILES .dll)
if(NOT WIN32)
  list(APPEND PAL_IMAGE_FILES .dll.exidx)
endif()

function(pal_add_library name)
  foreach(extension ${PAL_IMAGE_FILES})
    file(CREATE_LINK ${PAL_IMAGES}/${name}${extension} ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${name}${extension} SYMBOLIC)
  endforeach()
  add_custom_target(${name})
endfunction()

pal_add_library(DVLORQPAL)

if(WIN32)
  include(cmake/simulated_names.cmake)
  target_compile_options(simulated_names INTERFACE -include ${PAL_SIMULATED_NAMES})
endif()
