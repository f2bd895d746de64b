# korvane_records(target DESIGN file.dbd OUTPUT Name.h [NAMESPACE NS] [NAMES name…])
#
# Generates record classes from a design file while the target is built, and anew when the
# design has changed: the header OUTPUT in the target's binary folder, which the target and
# all that link it include by that name. NAMES are tables and queries by code or class name;
# without them it is all of the design's. The classes register themselves in every program
# that includes the header anywhere, and in every one that takes in the target's objects: an
# executable, or what links an OBJECT library.
function(korvane_records target)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "DESIGN;OUTPUT;NAMESPACE" "NAMES")
  if(ARG_UNPARSED_ARGUMENTS OR NOT ARG_DESIGN OR NOT ARG_OUTPUT)
    message(FATAL_ERROR "korvane_records(${target}): DESIGN and OUTPUT are needed, NAMESPACE and NAMES "
                        "may follow; unknown: ${ARG_UNPARSED_ARGUMENTS}")
  endif()
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "INTERFACE_LIBRARY")
    message(FATAL_ERROR "korvane_records(${target}): an INTERFACE library compiles nothing; use OBJECT")
  endif()
  get_filename_component(design "${ARG_DESIGN}" ABSOLUTE BASE_DIR ${CMAKE_CURRENT_SOURCE_DIR})
  get_target_property(folder ${target} BINARY_DIR)
  set(header "${folder}/${ARG_OUTPUT}")
  set(options --cpp --output "${header}")
  if(ARG_NAMESPACE)
    list(APPEND options --namespace ${ARG_NAMESPACE})
  endif()

  add_custom_command(OUTPUT "${header}"
                     COMMAND Korvane::korvane class ${options} -- "${design}" ${ARG_NAMES}
                     DEPENDS Korvane::korvane "${design}"
                     COMMENT "Generating ${ARG_OUTPUT}" VERBATIM)
  target_sources(${target} PRIVATE "${header}")
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  target_include_directories(${target} PUBLIC "${folder}")
endfunction()
