# Script mode, run by the build for each area (see QvLibrary.cmake): the staged include directory
# and the link check keep an area to its floor, and this closes the ways around them that neither
# sees. A quoted include is looked up beside the including file before the include path, so it can
# reach any header of the source tree; a path with ".." can climb out of the staged directory; a
# weak declaration links with nothing to resolve it; dlsym finds a symbol at run time.
#
#   -DAREA=name -DFILES=<file listing the area's sources and headers> -DSTAMP=<file written on success>
cmake_minimum_required(VERSION 3.25)
file(STRINGS ${FILES} own)
set(problems)
foreach(file IN LISTS own)
  get_filename_component(dir ${file} DIRECTORY)
  # One list item a line: the characters a CMake list gives a meaning (";", "\\", "[", "]")
  # are replaced first, "[" and "]" by "{" and "}".
  file(READ ${file} text)
  string(REPLACE ";" "," text "${text}")
  string(REPLACE "\\" "/" text "${text}")
  string(REPLACE "[" "{" text "${text}")
  string(REPLACE "]" "}" text "${text}")
  string(REPLACE "\n" ";" lines "${text}")
  set(includes ${lines})
  list(FILTER includes INCLUDE REGEX "^[ \t]*#[ \t]*include[ \t]*[<\"]")
  foreach(line IN LISTS includes)
    string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*[<\"]([^>\"]*)[>\"].*$" "\\1" name "${line}")
    if(name MATCHES "(^|/)\\.\\.(/|$)" OR IS_ABSOLUTE "${name}")
      list(APPEND problems "${file}: #include of \"${name}\": no \"..\" or absolute paths")
      continue()
    endif()
    if(line MATCHES "\"")
      get_filename_component(beside ${name} ABSOLUTE BASE_DIR ${dir})
      if(EXISTS ${beside} AND NOT beside IN_LIST own)
        list(APPEND problems "${file}: #include \"${name}\" reaches ${beside}, not a file of the ${AREA} area (include a lower floor's public header as <qvi18n/...>)")
      endif()
    endif()
  endforeach()
  set(escapes ${lines})
  list(FILTER escapes INCLUDE REGEX
    "__attribute__[ \t]*\\(\\([^)]*weak|\\{\\{[ \t]*gnu::weak|#[ \t]*pragma[ \t]+weak|(^|[^A-Za-z0-9_])dl(v?sym|m?open)[ \t]*\\(")
  foreach(line IN LISTS escapes)
    string(STRIP "${line}" line)
    list(APPEND problems "${file}: \"${line}\": no weak symbols or run-time look-ups in the library")
  endforeach()
endforeach()
if(problems)
  list(JOIN problems "\n  " text)
  message(FATAL_ERROR "qvi18n: the ${AREA} floor (see cmake/QvLibrary.cmake):\n  ${text}")
endif()
file(TOUCH ${STAMP})
