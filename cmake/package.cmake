# The files for pkg-config, and the package for Debian that `./package deb` makes of an installation.
file(RELATIVE_PATH prefix_from_file /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
set(folders "prefix=\${pcfiledir}/${prefix_from_file}
includedir=\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}/dvlorqpal
libdir=\${prefix}/${PAL_INSTALLED_LIBRARIES}
")
file(CONFIGURE OUTPUT dvlorqpal.pc @ONLY CONTENT "@folders@
Name: DVLORQPAL
Description: Platform abstraction library of a handheld, for programs that run on its simulated device
Version: @version@
Cflags: -I\${includedir}
Libs: -L\${libdir} -lpal_program
")
file(CONFIGURE OUTPUT dvlorqpal-simdevice.pc @ONLY CONTENT "@folders@
Name: DVLORQPAL simulated device
Description: A simulated handheld for tests in C++ (palsim/device.h)
Version: @version@
Requires: dvlorqpal = @version@
Cflags: -I\${includedir}/platform
Libs: -L\${libdir} -Wl,-rpath,\${libdir} -lpalsim -lsimdevice
")
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/dvlorqpal.pc ${CMAKE_CURRENT_BINARY_DIR}/dvlorqpal-simdevice.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(NOT PAL_FOR_DEBIAN)
  return()
endif()

# Whoever publishes the package is its maintainer.
set(PAL_MAINTAINER "Nobody yet <nobody@localhost>" CACHE STRING "The name and address in the Debian package")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME dvlorqpal)
set(CPACK_PACKAGE_VERSION ${version})
set(CPACK_PACKAGE_CONTACT ${PAL_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "library of a rugged handheld, on a simulated device")
set(CPACK_PACKAGE_DESCRIPTION
"DVLORQPAL is the platform abstraction library of a family of rugged handheld
computers with Windows CE 5. This package has it for a desk: the simulated
device, palsim and dcecfg to run and provision it, sample devices, scenarios,
and the headers and files with which other projects build on it.")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
include(CPack)

# The two histories that a package has: of what is in it, and of its making.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(CONFIGURE OUTPUT changelog.Debian @ONLY CONTENT "dvlorqpal (@version@-1) unstable; urgency=medium

  * What is new stands in changelog.gz.

 -- @PAL_MAINTAINER@  @date@
")
foreach(history ${PROJECT_SOURCE_DIR}/CHANGELOG.md=changelog ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian=changelog.Debian)
  string(REPLACE "=" ";" from_to ${history})
  list(POP_BACK from_to name)
  execute_process(COMMAND gzip -9 -n -c ${from_to} OUTPUT_FILE ${CMAKE_BINARY_DIR}/${name}.gz COMMAND_ERROR_IS_FATAL ANY)
  install(FILES ${CMAKE_BINARY_DIR}/${name}.gz DESTINATION ${PAL_INSTALLED_DOCUMENTS})
endforeach()
