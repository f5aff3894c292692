# What check_links.cmake must do with links good and bad. Needs WORK_DIRECTORY.

cmake_minimum_required(VERSION 3.25)

set(root ${WORK_DIRECTORY}/root)

function(check text)
  file(WRITE ${root}/docs/a.md "${text}")
  execute_process(
    COMMAND ${CMAKE_COMMAND} -DROOT=${root} ${ARGN} -P ${CMAKE_CURRENT_LIST_DIR}/check_links.cmake
    RESULT_VARIABLE result ERROR_VARIABLE errors)
  set(result ${result} PARENT_SCOPE)
  set(errors "${errors}" PARENT_SCOPE)
endfunction()

function(expect_accepted text)
  check("${text}" ${ARGN})
  if(NOT result EQUAL 0)
    message(SEND_ERROR "refused:\n${text}\n${errors}")
  endif()
endfunction()

function(expect_refused message text)
  check("${text}" ${ARGN})
  # long messages are broken into lines
  string(REGEX REPLACE "[ \n]+" " " errors "${errors}")
  string(FIND "${errors}" "${message}" position)
  if(result EQUAL 0 OR position EQUAL -1)
    message(SEND_ERROR "\"${message}\" should be said of:\n${text}\n${errors}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK_DIRECTORY})
file(WRITE ${root}/README.md "[the document](docs/a.md)\n")
file(WRITE ${WORK_DIRECTORY}/outside.md "\n")

expect_accepted("[one](a.md), [two](../README.md#part;x)\nand ![three](../docs/a.md) [four](https://example.org/) [five](#here)\n")
expect_accepted("[&]\n```cpp\n[&](const int& i) {}\n```\n" -DTESTED=README.md,docs/a.md)
expect_refused("docs/a.md: the link \"b.md\" leads nowhere" "[one](a.md) [two](b.md)\n")
expect_refused("docs/a.md: the link \"b.md\" leads nowhere" "```sh\ntrue\n```\n[two](b.md)\n")
expect_refused("docs/a.md: the link \"../../outside.md\" leads nowhere" "[out](../../outside.md)\n")
expect_refused("docs/a.md: no test does what this document says" "text\n" -DTESTED=README.md)
