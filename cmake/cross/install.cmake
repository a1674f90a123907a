# What the zip files of the cross-builds have: headers, documents, and the files by which other projects find them.
# Nothing of it knows the folder that it lies in.
include(CMakePackageConfigHelpers)
file(STRINGS ${PROJECT_SOURCE_DIR}/frame/version.h version REGEX "kLibraryVersion")
string(REGEX MATCH "[0-9]+(\\.[0-9]+)+" version "${version}")
write_basic_package_version_file(DVLORQPALConfigVersion.cmake VERSION ${version} COMPATIBILITY SameMajorVersion)
install(FILES DVLORQPALConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/DVLORQPALConfigVersion.cmake
        DESTINATION lib/cmake/DVLORQPAL)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include DESTINATION .)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION doc FILES_MATCHING PATTERN "*.md" PATTERN "*.svg"
        PATTERN "site" EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION doc)
