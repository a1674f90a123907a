# The DLLs that the build for the handheld has made, in place of libraries of this build.
set_target_properties(pal_objects PROPERTIES EXCLUDE_FROM_ALL ON)
file(MAKE_DIRECTORY ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

function(pal_add_library name)
  foreach(extension .dll .dll.exidx)
    file(CREATE_LINK ${PAL_IMAGES}/${name}${extension} ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${name}${extension} SYMBOLIC)
  endforeach()
  add_custom_target(${name})
endfunction()

pal_add_library(DVLORQPAL)
