# Does what a document tells its reader to do: goes through its fenced code blocks in order and
#   writes what is marked "file=NAME" to that file,
#   runs what is marked "sh", and stops at the first command that fails,
#   compares what is marked "text output" with what the last run printed.
# Other blocks are left alone. Needs DOCUMENT and DIRECTORY, which is emptied first and where everything happens.

cmake_minimum_required(VERSION 3.25)

function(fail text)
  message(FATAL_ERROR "${DOCUMENT}:${first_line}: ${text}")
endfunction()

function(write_block name)
  if(IS_ABSOLUTE "${name}" OR name MATCHES "(^|/)\\.\\.(/|$)" OR name STREQUAL "")
    fail("\"${name}\" is no file below the directory")
  endif()
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

# Splits `rest` at the first `mark`: what stands before it goes into `before`, what comes after stays in `rest`.
# `line` follows; `found` says whether there is one.
macro(take_until mark)
  string(FIND "${rest}" "${mark}" position)
  if(position EQUAL -1)
    set(found FALSE)
  else()
    set(found TRUE)
    string(SUBSTRING "${rest}" 0 ${position} before)
    string(LENGTH "${before}${mark}" position)
    string(SUBSTRING "${rest}" ${position} -1 rest)
    string(REGEX MATCHALL "\n" breaks "${before}${mark}")
    list(LENGTH breaks count)
    math(EXPR line "${line} + ${count}")
  endif()
endmacro()

# Gives back the line break that was taken last: it begins what comes next too.
macro(give_back_break)
  string(PREPEND rest "\n")
  math(EXPR line "${line} - 1")
endmacro()

file(REMOVE_RECURSE "${DIRECTORY}")
file(MAKE_DIRECTORY "${DIRECTORY}")
file(READ "${DOCUMENT}" rest)
set(line 1)
give_back_break()
set(blocks 0)
unset(output)

while(TRUE)
  take_until("\n```")
  if(NOT found)
    break()
  endif()
  set(first_line ${line})
  take_until("\n")
  set(info "${before}")
  give_back_break()
  take_until("\n```\n")
  if(NOT found)
    fail("this block does not end")
  endif()
  string(SUBSTRING "${before}\n" 1 -1 body)
  give_back_break()

  if(info MATCHES " file=([^ ]*)$")
    write_block("${CMAKE_MATCH_1}")
    math(EXPR blocks "${blocks} + 1")
  elseif(info STREQUAL "sh")
    run_block()
    math(EXPR blocks "${blocks} + 1")
  elseif(info STREQUAL "text output")
    compare_block()
  endif()
endwhile()

if(blocks EQUAL 0)
  set(first_line 1)
  fail("nothing here is to be written or run")
endif()
