# Builds the example plug-in against the installed package, and looks at what it exports and what it refuses.
# Needs PREFIX, SOURCE_DIRECTORY, WORK_DIRECTORY, CXX_COMPILER, BUILD_TYPE and NM.

cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

file(REMOVE_RECURSE ${WORK_DIRECTORY})
build_project(${SOURCE_DIRECTORY} ${WORK_DIRECTORY})

run(${NM} -D --defined-only --format=just-symbols ${WORK_DIRECTORY}/example_nodes.so)
if(NOT output STREQUAL "CreateNodeFactory\nGetMaterialLibVersion\n")
  message(FATAL_ERROR "the plug-in exports other symbols than its entry points:\n${output}")
endif()

file(WRITE ${WORK_DIRECTORY}/no_uv.xml [[
<material version="1" name="NoUv">
  <node id="board" type="ExampleChecker"/>
  <output name="colour" source="board" port="out_checker"/>
</material>
]])
execute_process(
  COMMAND ${PREFIX}/bin/patina export no_uv.xml --plugin ${WORK_DIRECTORY}/example_nodes.so
  WORKING_DIRECTORY ${WORK_DIRECTORY} RESULT_VARIABLE result ERROR_VARIABLE message)
if(NOT result EQUAL 1 OR NOT message STREQUAL
    "no_uv.xml:2: error: node \"board\" (\"Checker\"): a uv needs to be connected to the \"uv\" port\n")
  message(FATAL_ERROR "a checker without a uv gives ${result}: ${message}")
endif()
