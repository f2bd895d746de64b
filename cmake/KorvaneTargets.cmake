# How every target of the project is built: language level, warnings, sanitizers,
# precompiled headers, compiler cache. korvane_library and korvane_test are the only
# two commands that the folders' lists need.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_OPTIMIZE_DEPENDENCIES ON) # a library need not wait for those that it links
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

find_program(KORVANE_CCACHE ccache)
if(KORVANE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Precompiled headers are cached only when ccache is told not to mind their times.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
      ${KORVANE_CCACHE})
endif()

add_library(korvane_options INTERFACE)
target_compile_options(korvane_options INTERFACE -Wall -Wextra -Wno-missing-field-initializers -Wpedantic
                       -Wnon-virtual-dtor -Woverloaded-virtual -fpch-preprocess
                       $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>
                       $<$<BOOL:${KORVANE_WARNINGS_AS_ERRORS}>:-Werror>
                       # g++ 12 warns without cause where an optimised std::string takes a literal
                       $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overflow;-Wno-restrict;-Wno-array-bounds>)
target_compile_definitions(korvane_options INTERFACE QT_NO_CAST_FROM_BYTEARRAY QT_NO_KEYWORDS
                           QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
if(KORVANE_SANITIZE)
  target_compile_options(korvane_options INTERFACE -fsanitize=${KORVANE_SANITIZE} -fno-omit-frame-pointer
                         -fno-sanitize-recover=all)
  target_link_options(korvane_options INTERFACE -fsanitize=${KORVANE_SANITIZE})
endif()
if(KORVANE_FUZZERS)
  # The libraries report their coverage to the fuzzers.
  target_compile_options(korvane_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined)
  target_link_options(korvane_options INTERFACE -fsanitize=address,undefined)
endif()

# korvane_library(NAME folder [SOURCES …] [LINKS …] [PRIVATE_LINKS …] [CHIEF_HEADERS …])
#
# One folder under src/ is one target. It links what stands below it and nothing else, so
# that an include in the wrong direction does not link. Chief headers are those that an
# application includes as <Korvane/NAME.h>.
function(korvane_library folder)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS;PRIVATE_LINKS;CHIEF_HEADERS" ${ARGN})
  string(REPLACE "/" "_" target korvane_${folder})
  string(REPLACE "/" "-" export ${folder})
  add_library(${target} STATIC ${ARG_SOURCES})
  add_library(Korvane::${export} ALIAS ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${export} OUTPUT_NAME ${target})
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
    $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/Korvane>)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_link_libraries(${target} PUBLIC Qt6::Core ${ARG_LINKS}
                        PRIVATE $<BUILD_INTERFACE:korvane_options> ${ARG_PRIVATE_LINKS})
  target_precompile_headers(${target} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/precompiled.h)
  foreach(header ${ARG_CHIEF_HEADERS})
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/include/Korvane/${header}
         CONTENT "// SPDX-License-Identifier: MIT\n#pragma once\n#include \"${folder}/${header}\"\n")
  endforeach()
  set_property(GLOBAL APPEND PROPERTY KORVANE_LIBRARIES ${target})
endfunction()

# korvane_test(folder [SOURCES …] [LINKS …] [LABEL pure|contract|files|widget])
#
# One test program per folder, linked with that folder's target alone and what is named. Tests of
# the label widget have windows, which nobody sees.
function(korvane_test folder)
  cmake_parse_arguments(ARG "" "LABEL" "SOURCES;LINKS" ${ARGN})
  string(REPLACE "/" "_" name test_${folder})
  add_executable(${name} ${ARG_SOURCES})
  if(NOT ARG_LABEL)
    set(ARG_LABEL pure)
  endif()
  set(testing korvane_testing)
  if(ARG_LABEL STREQUAL "widget")
    set(testing korvane_widget_testing)
  endif()
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} ${testing} korvane_options)
  target_precompile_headers(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/precompiled.h)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 120 DISCOVERY_MODE PRE_TEST
                       PROPERTIES LABELS ${ARG_LABEL} TIMEOUT 600 ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
