# What a program for the handheld builds with, by GCC for bare ARM programs.
#
#   DVLORQPAL::headers  the exported interface
#   DVLORQPAL::library  the imports from DVLORQPAL.dll, and from the platform what that library itself uses
#   dvlorqpal_add_program(NAME SOURCE...)
#                       a program with the entry WinMain; the build packs it as NAME.exe
get_filename_component(DVLORQPAL_PREFIX ${CMAKE_CURRENT_LIST_DIR}/../../.. ABSOLUTE)
if(NOT CMAKE_SYSTEM_NAME STREQUAL Generic OR NOT CMAKE_SYSTEM_PROCESSOR STREQUAL arm)
  set(DVLORQPAL_FOUND FALSE)
  set(DVLORQPAL_NOT_FOUND_MESSAGE "${DVLORQPAL_PREFIX} is for programs for the handheld")
elseif(NOT TARGET DVLORQPAL::headers)
  add_library(DVLORQPAL::headers INTERFACE IMPORTED)
  target_include_directories(DVLORQPAL::headers INTERFACE ${DVLORQPAL_PREFIX}/include)
  add_library(DVLORQPAL::library STATIC IMPORTED)
  set_target_properties(DVLORQPAL::library PROPERTIES
    IMPORTED_LOCATION ${DVLORQPAL_PREFIX}/lib/libDVLORQPAL.a
    INTERFACE_LINK_LIBRARIES "DVLORQPAL::headers;gcc")
endif()

function(dvlorqpal_add_program name)
  set(packer ${DVLORQPAL_PREFIX}/share/dvlorqpal)
  file(GLOB definitions ${packer}/*.def)
  add_executable(${name} ${ARGN})
  set_target_properties(${name} PROPERTIES SUFFIX .elf LINK_DEPENDS ${packer}/image.ld)
  target_link_libraries(${name} PRIVATE DVLORQPAL::library)
  target_link_options(${name} PRIVATE -nostdlib -Wl,--emit-relocs,--gc-sections,--no-warn-rwx-segments
    -Wl,--defsym=IMAGE_BASE=0x10000,-e,WinMain -T ${packer}/image.ld
    -Wl,--defsym=__aeabi_unwind_cpp_pr0=0,--defsym=__aeabi_unwind_cpp_pr1=0)
  add_custom_command(TARGET ${name} POST_BUILD VERBATIM BYPRODUCTS ${name}.exe
    COMMAND ${packer}/pack.py $<TARGET_FILE:${name}> ${CMAKE_CURRENT_BINARY_DIR}/${name}.exe --imports ${definitions})
endfunction()
