# Installs the build into a fresh prefix. Needs BUILD_DIRECTORY and PREFIX.

cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

file(REMOVE_RECURSE ${PREFIX})
run(${CMAKE_COMMAND} --install ${BUILD_DIRECTORY} --prefix ${PREFIX})

foreach(file
    share/bash-completion/completions/patina
    share/doc/patina/README.md
    share/doc/patina/docs/material-document.md
    share/man/man1/patina.1
    share/doc/patina/examples/materials/painted_metal.xml
    share/doc/patina/examples/plugin/CMakeLists.txt
    share/zsh/site-functions/_patina)
  if(NOT EXISTS ${PREFIX}/${file})
    message(FATAL_ERROR "${file} was not installed")
  endif()
endforeach()
