# Installs the build into a fresh prefix. Needs BUILD_DIRECTORY and PREFIX.

cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

file(REMOVE_RECURSE ${PREFIX})
run(${CMAKE_COMMAND} --install ${BUILD_DIRECTORY} --prefix ${PREFIX})
