# What `cmake --install` puts where: tools, libraries, headers, sample devices, scenarios, documents, and the files by
# which other projects find them. Nothing of it knows the folder that it lies in, so that all of it can be moved.
include(CMakePackageConfigHelpers)

set(libraries simdevice pal_program palsim_device)
set(tools palsim dcecfg)
file(RELATIVE_PATH libraries_from_tools /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${PAL_INSTALLED_LIBRARIES})
set_target_properties(${libraries} PROPERTIES INSTALL_RPATH "\$ORIGIN")
set_target_properties(${tools} PROPERTIES INSTALL_RPATH "\$ORIGIN/${libraries_from_tools}")
install(TARGETS DVLORQPAL ${libraries} LIBRARY DESTINATION ${PAL_INSTALLED_LIBRARIES})
install(TARGETS ${tools} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
add_custom_target(installed DEPENDS DVLORQPAL ${libraries} ${tools})

install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/dvlorqpal)
install(FILES tools/palsim/program/palsim_program.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/dvlorqpal)
install(FILES tools/palsim/program/device.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/dvlorqpal/palsim)
install(FILES ${PAL_PLATFORM_HEADERS}/windows.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/dvlorqpal/platform)
install(DIRECTORY devices scenarios examples DESTINATION ${PAL_INSTALLED_DATA})
install(DIRECTORY sdk/python DESTINATION ${PAL_INSTALLED_DATA} FILES_MATCHING PATTERN "*.py")
install(DIRECTORY docs DESTINATION ${PAL_INSTALLED_DOCUMENTS} FILES_MATCHING PATTERN "*.md" PATTERN "*.svg"
        PATTERN "site" EXCLUDE)
install(FILES README.md CHANGELOG.md DESTINATION ${PAL_INSTALLED_DOCUMENTS})

# find_package(DVLORQPAL CONFIG)
file(STRINGS frame/version.h version REGEX "kLibraryVersion")
string(REGEX MATCH "[0-9]+(\\.[0-9]+)+" version "${version}")
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/DVLORQPAL)
configure_package_config_file(cmake/DVLORQPALConfig.cmake.in ${CMAKE_BINARY_DIR}/DVLORQPALConfig.cmake
  INSTALL_DESTINATION ${package} PATH_VARS CMAKE_INSTALL_INCLUDEDIR PAL_INSTALLED_LIBRARIES)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/DVLORQPALConfigVersion.cmake VERSION ${version}
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/DVLORQPALConfig.cmake ${CMAKE_BINARY_DIR}/DVLORQPALConfigVersion.cmake
  DESTINATION ${package})

include(cmake/help.cmake)
add_dependencies(installed man_pages)
include(cmake/package.cmake)
