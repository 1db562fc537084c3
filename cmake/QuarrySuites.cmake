# quarry_discover_suites(quarry_frame_tests [PREFIX Interface.] [LABELS core]): one CTest entry for each test suite of a
# program, which is asked for its suites when CTest starts. A process per suite and not per test saves the time that
# OpenCV takes to start; a failure still names its test.
function(quarry_discover_suites program)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "PREFIX;LABELS" "")
  set(list "${CMAKE_CURRENT_BINARY_DIR}/${program}_suites.cmake")
  file(GENERATE OUTPUT "${list}" CONTENT "set(program \"$<TARGET_FILE:${program}>\")
set(prefix \"${arg_PREFIX}\")
set(labels \"${arg_LABELS}\")
include(\"${PROJECT_SOURCE_DIR}/cmake/QuarrySuitesOfProgram.cmake\")
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${list}")
endfunction()
