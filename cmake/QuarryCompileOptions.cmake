# The compile options of the project's own code. Each target links quarry_compile_options privately.
add_library(quarry_compile_options INTERFACE)

target_compile_options(quarry_compile_options INTERFACE
  # No fused multiply-add: it rounds once instead of twice, and results must be the same on every machine.
  -ffp-contract=off
  # Messages give a file's path relative to the project's root, whatever the build folder.
  -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=
  # Assertions are part of the interface, so they stay on in every build type. This option also overrides -DNDEBUG from
  # CMAKE_CXX_FLAGS, which comes earlier on the command line.
  -UNDEBUG
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow)

if(QUARRY_WARNINGS_AS_ERRORS)
  target_compile_options(quarry_compile_options INTERFACE -Werror)
endif()

# With the address sanitizer, g++ 12 warns about the standard library's <regex>.
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=address" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(quarry_compile_options INTERFACE -Wno-maybe-uninitialized)
endif()
