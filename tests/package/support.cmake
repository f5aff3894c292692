# What the scripts of this folder share.

# Runs a command whose failure is the test's; its standard output is left in `output`.
function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE output)
  set(output "${output}" PARENT_SCOPE)
endfunction()

# Builds a project against nothing but what is installed in PREFIX, with every warning an error.
function(build_project source build)
  run(${CMAKE_COMMAND} -S ${source} -B ${build} -G Ninja
    -DCMAKE_CXX_COMPILER=${CXX_COMPILER} -DCMAKE_BUILD_TYPE=${BUILD_TYPE} -DCMAKE_PREFIX_PATH=${PREFIX}
    "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror")
  run(${CMAKE_COMMAND} --build ${build})
endfunction()

function(expect_file file)
  if(NOT EXISTS ${file})
    message(FATAL_ERROR "${file} was not written")
  endif()
endfunction()
