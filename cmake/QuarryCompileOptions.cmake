# How our own code is compiled: the target quarry_compile_options carries it, privately, to everything we build.
add_library(quarry_compile_options INTERFACE)

target_compile_options(quarry_compile_options INTERFACE
  # Our own arithmetic is the same on every machine: no fused multiply-add that rounds once where two roundings are
  # meant.
  -ffp-contract=off
  # Messages name a file by its place in the tree, whatever the build folder.
  -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=
  # Aborting checks are part of the behaviour: they stay on in every build type, and whatever comes from outside, which
  # stands before this on the command line.
  -UNDEBUG
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow)

if(QUARRY_WARNINGS_AS_ERRORS)
  target_compile_options(quarry_compile_options INTERFACE -Werror)
endif()

# With the address sanitizer g++ 12 warns of the standard library's own <regex>.
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=address" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(quarry_compile_options INTERFACE -Wno-maybe-uninitialized)
endif()
