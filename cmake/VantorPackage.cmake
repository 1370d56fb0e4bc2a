# Installing the engine for game makers: the library, its headers (included
# as in the source tree, "core/GameManager.h"), the font, and the package
# files that make find_package(Vantor) work; and a Debian package of the
# same files ("make package").
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(VANTOR_CMAKE_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vantor)
set(VANTOR_FONT_DESTINATION ${CMAKE_INSTALL_DATADIR}/vantor)

install(TARGETS vantor EXPORT VantorTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vantor)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/engine/
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vantor
        FILES_MATCHING PATTERN "*.h")
install(FILES ${VANTOR_FONT_SOURCE} DESTINATION ${VANTOR_FONT_DESTINATION} RENAME vt-font.ttf)
if(EXISTS ${VANTOR_FONT_COPYRIGHT})
  install(FILES ${VANTOR_FONT_COPYRIGHT} DESTINATION ${VANTOR_FONT_DESTINATION}
          RENAME vt-font.copyright)
endif()
install(EXPORT VantorTargets NAMESPACE Vantor:: DESTINATION ${VANTOR_CMAKE_DESTINATION})

configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/VantorConfig.cmake.in ${PROJECT_BINARY_DIR}/VantorConfig.cmake
  INSTALL_DESTINATION ${VANTOR_CMAKE_DESTINATION}
  PATH_VARS VANTOR_FONT_DESTINATION)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VantorConfigVersion.cmake
                                 VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VantorConfig.cmake
              ${PROJECT_BINARY_DIR}/VantorConfigVersion.cmake
              ${CMAKE_CURRENT_LIST_DIR}/VantorGameFiles.cmake
        DESTINATION ${VANTOR_CMAKE_DESTINATION})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vantor-dev)
set(CPACK_PACKAGE_VENDOR "Vantor")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Vantor text-mode 2-D game engine for game makers")
set(CPACK_PACKAGE_DESCRIPTION
    "The Vantor engine's static library, headers, font and CMake package: a game finds it with find_package(Vantor 4.17 REQUIRED) and links Vantor::vantor.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Vantor developers <vantor@localhost>")
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libsfml-dev (>= 2.5), libx11-dev, libgl-dev, g++, cmake (>= 3.25)")
include(CPack)
