# Language level, warnings, visibility, instrumentation and output folders of everything in the tree.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
# the SDK is linked into plug-ins
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# the build tree is laid out like the installation, so that the command finds its plug-ins the same way in both
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(PATINA_PLUGIN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib/patina/plugins)

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
  if(PATINA_WARNINGS_AS_ERRORS)
    add_compile_options(-Werror)
  endif()
  if(PATINA_SANITIZERS)
    add_compile_options(-fsanitize=${PATINA_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${PATINA_SANITIZERS})
  endif()
  if(PATINA_BUILD_FUZZERS)
    add_compile_options(-fsanitize=fuzzer-no-link)
  endif()
  if(PATINA_COVERAGE)
    add_compile_options(--coverage -fprofile-abs-path -fprofile-update=atomic)
    add_link_options(--coverage)
  endif()
endif()

# Adds a folder's sources and public headers to a library of the tree. Headers are reached, in the tree and outside,
# as <folder/header.h>; that each compiles on its own is checked by the target all_verify_interface_header_sets.
function(patina_add_folder target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;HEADERS")
  target_sources(${target} PRIVATE ${arg_SOURCES})
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${arg_HEADERS})
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
endfunction()
