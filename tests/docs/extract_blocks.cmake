# Does what a document tells its reader to do: goes through its fenced code blocks in order and
#   writes what is marked "file=NAME" to that file,
#   runs what is marked "sh", and stops at the first command that fails,
#   compares what is marked "text output" with what the last run printed,
#   compares what is marked "same=NAME" with that file, to the byte,
#   looks for what is marked "within=NAME" in that file, however deep it is indented there,
#   leaves alone what is marked "untested: REASON".
# A block that is marked in no such way is an error, and so is an indented one, which cannot be.
# Needs DOCUMENT and DIRECTORY, which is emptied first and where everything happens. With ROOT, it is made a copy of
# that folder.

cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/scan.cmake)

function(fail text)
  message(FATAL_ERROR "${DOCUMENT}:${first_line}: ${text}")
endfunction()

function(require_inside name)
  if(IS_ABSOLUTE "${name}" OR name MATCHES "(^|/)\\.\\.(/|$)" OR name STREQUAL "")
    fail("\"${name}\" is no file below the directory")
  endif()
endfunction()

function(write_block name)
  require_inside("${name}")
  file(WRITE "${DIRECTORY}/${name}" "${body}")
endfunction()

function(run_block)
  set(script "${DIRECTORY}/.block.sh")
  file(WRITE "${script}" "${body}")
  execute_process(COMMAND sh -eu "${script}" WORKING_DIRECTORY "${DIRECTORY}"
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT result EQUAL 0)
    fail("the commands end with ${result}:\n${output}${errors}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(compare_block)
  if(NOT DEFINED output)
    fail("no commands come before this output")
  endif()
  if(NOT body STREQUAL output)
    fail("the commands print something else:\n${output}")
  endif()
endfunction()

function(read_file name result)
  require_inside("${name}")
  if(NOT EXISTS "${DIRECTORY}/${name}")
    fail("there is no file \"${name}\"")
  endif()
  file(READ "${DIRECTORY}/${name}" content)
  set(${result} "${content}" PARENT_SCOPE)
endfunction()

function(compare_file name)
  read_file("${name}" content)
  if(NOT body STREQUAL content)
    fail("\"${name}\" holds something else:\n${content}")
  endif()
endfunction()

function(find_in_file name)
  read_file("${name}" content)
  string(REGEX REPLACE "\n +" "\n" content "\n${content}")
  string(REGEX REPLACE "\n +" "\n" wanted "\n${body}")
  # the last line may go on, with the comma of a list
  string(REGEX REPLACE "\n$" "" wanted "${wanted}")
  string(FIND "${content}" "${wanted}" position)
  if(position EQUAL -1)
    fail("this is not in \"${name}\"")
  endif()
endfunction()

function(refuse_indented_block)
  string(REGEX MATCH "^(.*\n)?\n(    |\t)[^ ]" indented "${prose}")
  if(indented)
    string(REGEX MATCHALL "\n" breaks "${indented}")
    list(LENGTH breaks count)
    math(EXPR first_line "${prose_line} + ${count}")
    fail("an indented block; fence it, and say what becomes of it")
  endif()
endfunction()

file(REMOVE_RECURSE "${DIRECTORY}")
file(MAKE_DIRECTORY "${DIRECTORY}")
if(DEFINED ROOT)
  file(COPY "${ROOT}/" DESTINATION "${DIRECTORY}")
endif()
begin_scan("${DOCUMENT}")
set(blocks 0)
unset(output)

while(TRUE)
  next_block()
  refuse_indented_block()
  if(NOT found)
    break()
  endif()
  if(NOT complete)
    fail("this block does not end")
  endif()
  math(EXPR blocks "${blocks} + 1")

  if(info MATCHES " file=([^ ]*)$")
    write_block("${CMAKE_MATCH_1}")
  elseif(info STREQUAL "sh")
    run_block()
  elseif(info STREQUAL "text output")
    compare_block()
  elseif(info MATCHES " same=([^ ]*)$")
    compare_file("${CMAKE_MATCH_1}")
  elseif(info MATCHES " within=([^ ]*)$")
    find_in_file("${CMAKE_MATCH_1}")
  elseif(NOT info MATCHES " untested: .")
    fail("nothing says what becomes of this block: see extract_blocks.cmake")
  endif()
endwhile()

if(blocks EQUAL 0)
  set(first_line 1)
  fail("there is no block here")
endif()
