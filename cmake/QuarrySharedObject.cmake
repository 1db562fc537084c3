# quarry_shared_object(target Name factory...): makes libName.so, with the major version of the project in its soname. It
# exports the factories and the symbols in exports.txt of the current folder; the linker hides all others, instances of
# standard templates included.
function(quarry_shared_object target name)
  set(exports "${CMAKE_CURRENT_SOURCE_DIR}/exports.txt")
  set(map "${CMAKE_CURRENT_BINARY_DIR}/exports.map")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${exports}")
  file(STRINGS "${exports}" symbols)
  list(APPEND symbols ${ARGN})
  list(JOIN symbols ";\n    " symbols)
  file(CONFIGURE OUTPUT exports.map CONTENT "{\n  global:\n    @symbols@;\n  local:\n    *;\n};\n" @ONLY)
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME ${name}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    LINK_DEPENDS "${map}"
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
  target_include_directories(${target} INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_options(${target} PRIVATE "LINKER:--version-script=${map}" LINKER:--no-undefined)
endfunction()
