# Exports a material of the example plug-in with the installed command, and has a real compiler's front end read it.
# Needs PREFIX, PLUGIN, MATERIAL, NAME, WORK_DIRECTORY, PRELUDE and COMPILER; without a compiler the programs stay
# unread. CALLED_ONCE names functions, between commas, that the programs call once each, however many nodes read their
# value.

cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

function(expect_compiled stage)
  file(READ ${PRELUDE} prelude)
  file(READ ${WORK_DIRECTORY}/${NAME}.${stage}.cg program)
  file(WRITE ${WORK_DIRECTORY}/${NAME}.${stage}.hlsl "${prelude}${program}")
  run(${COMPILER} -D -S ${stage} -e main -V -o ${WORK_DIRECTORY}/${stage}.spv
    ${WORK_DIRECTORY}/${NAME}.${stage}.hlsl)
  expect_file(${WORK_DIRECTORY}/${stage}.spv)
endfunction()

file(REMOVE_RECURSE ${WORK_DIRECTORY})
execute_process(
  COMMAND ${PREFIX}/bin/patina export ${MATERIAL} --plugin ${PLUGIN} -o ${WORK_DIRECTORY}
  COMMAND_ERROR_IS_FATAL ANY ERROR_VARIABLE warnings ECHO_ERROR_VARIABLE)
if(warnings)
  message(FATAL_ERROR "the example is exported with warnings")
endif()
expect_file(${WORK_DIRECTORY}/${NAME}.bindings.xml)

file(READ ${WORK_DIRECTORY}/${NAME}.vert.cg vertex_program)
file(READ ${WORK_DIRECTORY}/${NAME}.frag.cg fragment_program)
string(REPLACE "," ";" functions "${CALLED_ONCE}")
foreach(function IN LISTS functions)
  string(REGEX MATCHALL "\n\t${function}\\(" calls "${vertex_program}${fragment_program}")
  list(LENGTH calls count)
  if(NOT count EQUAL 1)
    message(FATAL_ERROR "${function} is called ${count} times")
  endif()
endforeach()

if(COMPILER)
  expect_compiled(vert)
  expect_compiled(frag)
endif()
