# Installs the build into a fresh prefix, builds the consumer against nothing but that, and runs it.
# Needs BUILD_DIRECTORY, WORK_DIRECTORY, CONSUMER_DIRECTORY, CXX_COMPILER and BUILD_TYPE.

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE output)
  set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK_DIRECTORY})
set(prefix ${WORK_DIRECTORY}/prefix)
run(${CMAKE_COMMAND} --install ${BUILD_DIRECTORY} --prefix ${prefix})
run(${CMAKE_COMMAND} -S ${CONSUMER_DIRECTORY} -B ${WORK_DIRECTORY}/build -G Ninja
  -DCMAKE_CXX_COMPILER=${CXX_COMPILER} -DCMAKE_BUILD_TYPE=${BUILD_TYPE} -DCMAKE_PREFIX_PATH=${prefix}
  "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror")
run(${CMAKE_COMMAND} --build ${WORK_DIRECTORY}/build)

run(${WORK_DIRECTORY}/build/studio_host ${prefix}/lib/patina/plugins/corenodes.so
  ${WORK_DIRECTORY}/build/studio_nodes.so)
string(FIND "${output}" "void studioGrey( out half out_grey )\n{\n\tout_grey = 0.18;\n}\n" position)
if(position EQUAL -1)
  message(FATAL_ERROR "the studio's function is not in the program:\n${output}")
endif()

# the installed command finds the installed plug-in by itself
run(${prefix}/bin/patina export ${CONSUMER_DIRECTORY}/../../../examples/materials/painted_metal.xml
  -o ${WORK_DIRECTORY}/shaders)
foreach(file PaintedMetal.vert.cg PaintedMetal.frag.cg PaintedMetal.bindings.xml)
  if(NOT EXISTS ${WORK_DIRECTORY}/shaders/${file})
    message(FATAL_ERROR "${file} was not written")
  endif()
endforeach()

foreach(file
    share/bash-completion/completions/patina
    share/doc/patina/README.md
    share/doc/patina/docs/material-document.md
    share/man/man1/patina.1
    share/patina/examples/materials/painted_metal.xml
    share/zsh/vendor-completions/_patina)
  if(NOT EXISTS ${prefix}/${file})
    message(FATAL_ERROR "${file} was not installed")
  endif()
endforeach()
