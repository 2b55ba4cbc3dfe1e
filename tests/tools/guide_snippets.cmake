# Extracts every ```cpp block of the guide and compiles and links each one as a program against
# the build tree, so that the guide's examples cannot fall behind the library.
# -D: GUIDE, OUT, CXX, INCLUDE, LIBDIR, LIBS (a ;-list of further libraries) and FLAGS (a ;-list of
# compiler flags).
file(READ ${GUIDE} text)
# Semicolons would split the list of blocks; they travel as a control character.
string(ASCII 1 semicolon)
string(REPLACE ";" "${semicolon}" text "${text}")
string(REGEX MATCHALL "```cpp\n([^`]*)```" blocks "${text}")
list(LENGTH blocks count)
if(count EQUAL 0)
  message(FATAL_ERROR "no C++ blocks in ${GUIDE}")
endif()
file(MAKE_DIRECTORY ${OUT})
set(index 0)
foreach(block IN LISTS blocks)
  math(EXPR index "${index} + 1")
  string(REGEX REPLACE "^```cpp\n" "" code "${block}")
  string(REGEX REPLACE "```$" "" code "${code}")
  string(REPLACE "${semicolon}" ";" code "${code}")
  file(WRITE ${OUT}/snippet_${index}.cpp "${code}")
  execute_process(
    COMMAND ${CXX} -std=c++17 -Wall -Werror ${FLAGS} -I${INCLUDE} ${OUT}/snippet_${index}.cpp -o ${OUT}/snippet_${index}
      -L${LIBDIR} -Wl,-rpath,${LIBDIR} -lqvi18n ${LIBS}
    RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "C++ block ${index} of ${GUIDE} does not build:\n${code}\n${out}")
  endif()
endforeach()
message(STATUS "${count} C++ blocks of the guide build")
