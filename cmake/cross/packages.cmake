# What a cross-build takes from the host's packages: headers, in a folder that holds no others. The host's libraries
# and the other headers beside these belong to the host.
set(PAL_PACKAGES ${CMAKE_BINARY_DIR}/packages)

function(pal_link_headers)
  file(MAKE_DIRECTORY ${PAL_PACKAGES})
  foreach(name IN LISTS ARGN)
    if(NOT EXISTS /usr/include/${name})
      message(FATAL_ERROR "/usr/include/${name} is missing")
    endif()
    file(CREATE_LINK /usr/include/${name} ${PAL_PACKAGES}/${name} SYMBOLIC)
  endforeach()
endfunction()

# pal_add_header_package(TARGET HEADER... [DEFINITIONS DEFINITION...])
function(pal_add_header_package target)
  cmake_parse_arguments(PARSE_ARGV 1 package "" "" "DEFINITIONS")
  if(TARGET ${target})
    return()
  endif()
  pal_link_headers(${package_UNPARSED_ARGUMENTS})
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES ${PAL_PACKAGES}
                        INTERFACE_COMPILE_DEFINITIONS "${package_DEFINITIONS}")
endfunction()

# find_package asks this first; a package that is not here is looked for as always.
macro(pal_provide_package method name)
  if("${name}" STREQUAL "fmt")
    pal_add_header_package(fmt::fmt fmt DEFINITIONS FMT_HEADER_ONLY=1)
    set(fmt_FOUND TRUE)
  elseif("${name}" STREQUAL "tomlplusplus")
    pal_add_header_package(tomlplusplus::tomlplusplus toml++)
    set(tomlplusplus_FOUND TRUE)
  endif()
endmacro()
cmake_language(SET_DEPENDENCY_PROVIDER pal_provide_package SUPPORTED_METHODS FIND_PACKAGE)
