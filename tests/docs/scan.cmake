# Goes through the fenced code blocks of a Markdown document: begin_scan, then next_block until `found` is false.

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

macro(begin_scan document)
  file(READ "${document}" rest)
  set(line 1)
  give_back_break()
endmacro()

# Sets `prose` to what stands before the next block, or to all that is left when there is none; and of the block
# `first_line`, `info` (what stands behind the fence) and `body`. `complete` says whether the block ends.
macro(next_block)
  set(prose_line ${line})
  take_until("\n```")
  if(NOT found)
    set(prose "${rest}")
  else()
    set(prose "${before}")
    set(first_line ${line})
    take_until("\n")
    set(info "${before}")
    give_back_break()
    take_until("\n```\n")
    set(complete ${found})
    set(found TRUE)
    if(complete)
      string(SUBSTRING "${before}\n" 1 -1 body)
      give_back_break()
    endif()
  endif()
endmacro()
