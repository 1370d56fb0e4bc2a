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
# The headers a game includes, and those they include in turn; the engine's
# other headers (readers, buffers, the terminal's and the window's
# internals) stay in the source tree.
set(VANTOR_PUBLIC_HEADERS
    core/Box.h core/Circle.h core/Clock.h core/Color.h core/Config.h core/Event.h
    core/EventStep.h core/FrameStats.h core/GameManager.h core/Line.h core/LogManager.h
    core/Manager.h core/Match.h core/Utility.h core/Vector.h
    media/Animation.h media/AudioEnvironment.h media/CellFrame.h media/DisplayManager.h
    media/EventKeyboard.h media/EventMouse.h media/EventView.h media/Frame.h
    media/InputActions.h media/InputManager.h media/InputRecord.h media/Music.h
    media/ResourceManager.h media/Shape.h media/Sound.h media/Sprite.h media/TextLabel.h
    media/ViewObject.h
    world/EventCollision.h world/EventOut.h world/EventPath.h world/MapLoader.h world/Object.h
    world/ObjectList.h world/SceneGraph.h world/WorldManager.h
    extras/EventNetwork.h extras/Firework.h extras/Harness.h extras/MessageBuffer.h
    extras/NetworkManager.h extras/Particle.h extras/Particles.h extras/Pause.h
    extras/Precipitation.h extras/Recorder.h extras/Recording.h extras/Splash.h
    extras/Timers.h)
foreach(header ${VANTOR_PUBLIC_HEADERS})
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/engine/${header}
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vantor/${folder})
endforeach()
install(FILES ${VANTOR_GENERATED_DIR}/core/Version.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vantor/core)
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
    "The Vantor engine's static library, headers, font and CMake package: a game finds it with find_package(Vantor ${PROJECT_VERSION} REQUIRED) and links Vantor::vantor.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Vantor developers <vantor@localhost>")
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libsfml-dev (>= 2.5), libx11-dev, libgl-dev, g++, cmake (>= 3.25)")
include(CPack)
