# What a program for a PC with Windows builds with. Beside it lie the DLLs and the device of bin/ (doc/windows.md).
#
#   DVLORQPAL::headers  the exported interface; <windows.h> comes first
#   DVLORQPAL::library  DVLORQPAL.dll with its import library
get_filename_component(DVLORQPAL_PREFIX ${CMAKE_CURRENT_LIST_DIR}/../../.. ABSOLUTE)
if(NOT WIN32)
  set(DVLORQPAL_FOUND FALSE)
  set(DVLORQPAL_NOT_FOUND_MESSAGE "${DVLORQPAL_PREFIX} is for programs for Windows")
elseif(NOT TARGET DVLORQPAL::headers)
  add_library(DVLORQPAL::headers INTERFACE IMPORTED)
  target_include_directories(DVLORQPAL::headers INTERFACE ${DVLORQPAL_PREFIX}/include)
  add_library(DVLORQPAL::library SHARED IMPORTED)
  set_target_properties(DVLORQPAL::library PROPERTIES
    IMPORTED_LOCATION ${DVLORQPAL_PREFIX}/bin/DVLORQPAL.dll
    IMPORTED_IMPLIB ${DVLORQPAL_PREFIX}/lib/DVLORQPAL.lib
    INTERFACE_LINK_LIBRARIES DVLORQPAL::headers)
endif()
