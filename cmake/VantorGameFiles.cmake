# vantor_game_files(TARGET <executable> [DATA <folder>])
#
# Copies what a Vantor game reads at run time beside its executable, at build
# time: the engine's font as vt-font.ttf and, when given, the contents of the
# game's data folder (so DATA data puts data/sprites/ at sprites/ and
# data/vt-config.txt at vt-config.txt). The copy is made again whenever a
# file of the folder changes. An executable named as an entry of the data
# folder (a target "sprites" beside data/sprites/) is refused.
function(vantor_game_files)
  cmake_parse_arguments(PARSE_ARGV 0 ARG "" "TARGET;DATA" "")
  if(NOT ARG_TARGET)
    message(FATAL_ERROR "vantor_game_files: TARGET <executable> is required")
  endif()
  if(NOT TARGET ${ARG_TARGET})
    message(FATAL_ERROR "vantor_game_files: '${ARG_TARGET}' is not a target")
  endif()
  get_property(font GLOBAL PROPERTY VANTOR_FONT_FILE)
  if(NOT font)
    message(FATAL_ERROR "vantor_game_files: the engine's font is unknown; find_package(Vantor) first")
  endif()
  set(destination $<TARGET_FILE_DIR:${ARG_TARGET}>)
  set(stamp ${CMAKE_CURRENT_BINARY_DIR}/${ARG_TARGET}_game_files.stamp)
  set(copy_data "")
  set(data_files "")
  if(ARG_DATA)
    get_filename_component(data ${ARG_DATA} ABSOLUTE BASE_DIR ${CMAKE_CURRENT_SOURCE_DIR})
    if(NOT IS_DIRECTORY ${data})
      message(FATAL_ERROR "vantor_game_files: DATA folder '${data}' does not exist")
    endif()
    # The executable and the data's top-level entries share one folder.
    get_target_property(output_name ${ARG_TARGET} OUTPUT_NAME)
    if(NOT output_name)
      set(output_name ${ARG_TARGET})
    endif()
    if(EXISTS ${data}/${output_name})
      message(FATAL_ERROR
        "vantor_game_files: the executable '${output_name}' would have the same path as "
        "'${data}/${output_name}', which is copied beside it; rename the target "
        "(or set its OUTPUT_NAME) or the data's '${output_name}'")
    endif()
    file(GLOB_RECURSE data_files CONFIGURE_DEPENDS ${data}/*)
    set(copy_data COMMAND ${CMAKE_COMMAND} -E copy_directory ${data} ${destination})
  endif()
  add_custom_command(
    OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${destination}
    COMMAND ${CMAKE_COMMAND} -E copy ${font} ${destination}/vt-font.ttf
    ${copy_data}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${font} ${data_files}
    COMMENT "Copying the font and game data beside ${ARG_TARGET}"
    VERBATIM)
  add_custom_target(${ARG_TARGET}_game_files DEPENDS ${stamp})
  add_dependencies(${ARG_TARGET} ${ARG_TARGET}_game_files)
endfunction()
