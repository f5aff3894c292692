# Builds the consumer against the installed package, and runs it.
# Needs PREFIX, SOURCE_DIRECTORY, WORK_DIRECTORY, MATERIAL, CXX_COMPILER and BUILD_TYPE.

cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

file(REMOVE_RECURSE ${WORK_DIRECTORY})
build_project(${SOURCE_DIRECTORY} ${WORK_DIRECTORY}/build)

run(${WORK_DIRECTORY}/build/studio_host ${PREFIX}/lib/patina/plugins/corenodes.so
  ${WORK_DIRECTORY}/build/studio_nodes.so)
string(FIND "${output}" "void studioGrey( out half out_grey )\n{\n\tout_grey = 0.18;\n}\n" position)
if(position EQUAL -1)
  message(FATAL_ERROR "the studio's function is not in the program:\n${output}")
endif()

# the installed command finds the installed plug-in by itself
run(${PREFIX}/bin/patina export ${MATERIAL} -o ${WORK_DIRECTORY}/shaders)
foreach(file PaintedMetal.vert.cg PaintedMetal.frag.cg PaintedMetal.bindings.xml)
  expect_file(${WORK_DIRECTORY}/shaders/${file})
endforeach()
