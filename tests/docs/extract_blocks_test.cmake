# What extract_blocks.cmake must do with documents good and bad. Needs WORK_DIRECTORY.

cmake_minimum_required(VERSION 3.25)

set(document ${WORK_DIRECTORY}/document.md)
set(directory ${WORK_DIRECTORY}/blocks)

function(extract text)
  file(WRITE ${document} "${text}")
  execute_process(
    COMMAND ${CMAKE_COMMAND} -DDOCUMENT=${document} -DDIRECTORY=${directory}
      ${ARGN} -P ${CMAKE_CURRENT_LIST_DIR}/extract_blocks.cmake
    RESULT_VARIABLE result ERROR_VARIABLE errors)
  set(result ${result} PARENT_SCOPE)
  set(errors "${errors}" PARENT_SCOPE)
endfunction()

function(expect_accepted text)
  extract("${text}")
  if(NOT result EQUAL 0)
    message(SEND_ERROR "refused:\n${text}\n${errors}")
  endif()
endfunction()

function(expect_file name content)
  file(READ ${directory}/${name} written)
  if(NOT written STREQUAL content)
    message(SEND_ERROR "${name} holds \"${written}\" instead of \"${content}\"")
  endif()
endfunction()

function(expect_refused line reason text)
  extract("${text}")
  # long messages are broken into lines
  string(REGEX REPLACE "[ \n]+" " " message "${errors}")
  string(FIND "${message}" "document.md:${line}: ${reason}" position)
  if(result EQUAL 0 OR position EQUAL -1)
    message(SEND_ERROR "line ${line} should be refused for \"${reason}\":\n${text}\n${errors}")
  endif()
endfunction()

# files come out byte by byte, whatever CMake makes of such characters elsewhere
expect_accepted([=[
# Title
```cpp file=a.cpp

int a[] = { 1, 2 }; // ${x} @y@ "quoted" \n \\ ;

	indented( "]]" );
```
text
```text untested: because
left alone
```
```xml file=sub/b.xml
<b/>
```
```text file=empty
```
]=])
expect_file(a.cpp "\nint a[] = { 1, 2 }; // \${x} @y@ \"quoted\" \\n \\\\ ;\n\n\tindented( \"]]\" );\n")
expect_file(sub/b.xml "<b/>\n")
expect_file(empty "")

# commands run in order, where the files are, and what they print can be shown
expect_accepted([[
```text file=word
one;two
```
```sh
cat word
```
```text output
one;two
```
```sh
printf three > word
```
```sh untested: it fails
false
```
]])
expect_file(word "three")

# files can be shown, and parts of them
expect_accepted([[
```json file=list.json
{
  "list": [
    {
      "a": 1
    },
    2
  ]
}
```
```sh
cp list.json copy.json
```
```json same=copy.json
{
  "list": [
    {
      "a": 1
    },
    2
  ]
}
```
```json within=copy.json
{
  "a": 1
}
```
]])

# the reader has files already
file(WRITE ${WORK_DIRECTORY}/base/sub/word "four\n")
extract("```text same=sub/word\nfour\n```\n" -DROOT=${WORK_DIRECTORY}/base)
if(NOT result EQUAL 0)
  message(SEND_ERROR "the root is not copied:\n${errors}")
endif()

# nothing stays from an earlier run
expect_accepted("```text file=other\n```\n")
if(EXISTS ${directory}/word)
  message(SEND_ERROR "the directory was not emptied")
endif()

expect_refused(3 "the commands end with 1:" "one\ntwo\n```sh\nfalse\ntrue\n```\n")
expect_refused(1 "the commands end with 2:" "```sh\necho $UNDEFINED_NAME\n```\n")
expect_refused(4 "the commands print something else: one" "```sh\necho one\n```\n```text output\ntwo\n```\n")
expect_refused(2 "no commands come before this output" "\n```text output\none\n```\n")
expect_refused(5 "this block does not end" "```sh\ntrue\n```\n\n```sh\ntrue\n")
expect_refused(1 "\"../a\" is no file below the directory" "```text file=../a\n```\n")
expect_refused(1 "\"/a\" is no file below the directory" "```text file=/a\n```\n")
expect_refused(2 "there is no file \"a\"" "\n```text same=a\na\n```\n")
expect_refused(1 "\"../a\" is no file below the directory" "```text within=../a\n```\n")
expect_refused(4 "\"a\" holds something else: one" "```text file=a\none\n```\n```text same=a\none\n\n```\n")
expect_refused(4 "this is not in \"a\"" "```text file=a\none\n```\n```text within=a\nne\n```\n")
expect_refused(3 "nothing says what becomes of this block" "# Title\n\n```text\na\n```\n")
expect_refused(1 "nothing says what becomes of this block" "```\na\n```\n")
expect_refused(1 "nothing says what becomes of this block" "```sh untested: \na\n```\n")
expect_refused(3 "an indented block" "Title\n\n    a\n\n```sh\ntrue\n```\n")
expect_refused(6 "an indented block" "```sh\ntrue\n```\nTitle\n\n    a\n")
expect_refused(1 "there is no block here" "# Title\n")
