# Checks a plug-in with the installed command. Needs PREFIX and PLUGIN.

cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

run(${PREFIX}/bin/patina validate ${PLUGIN})
