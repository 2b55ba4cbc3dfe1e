# Script mode: install, then build and run the consumer two ways.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(LAST_OUTPUT "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
foreach(f bin/${PLATFORM_TAG}/libqvi18n.so include/qvi18n/qvi18n.hpp
          lib/cmake/qvi18n/qvi18nConfig.cmake lib/cmake/qvi18n/qvi18nConfigVersion.cmake
          lib/pkgconfig/qvi18n.pc derived/share/resources/fl/catalog_map.xml)
  if(NOT EXISTS ${prefix}/${f})
    message(FATAL_ERROR "missing from the installed tree: ${f}")
  endif()
endforeach()

# Every installed header includes, of ours, only installed headers, and by <qvi18n/...>.
file(GLOB_RECURSE headers RELATIVE ${prefix}/include ${prefix}/include/qvi18n/*.hpp)
foreach(header IN LISTS headers)
  file(STRINGS ${prefix}/include/${header} includes REGEX "^[ \t]*#[ \t]*include")
  foreach(line IN LISTS includes)
    if(line MATCHES "\"")
      message(FATAL_ERROR "installed ${header} includes by a quoted name: ${line}")
    endif()
    if(line MATCHES "<(qvi18n/[^>]*)>")
      set(included ${CMAKE_MATCH_1})
      if(NOT EXISTS ${prefix}/include/${included})
        message(FATAL_ERROR "installed ${header} includes ${included}, which is not installed")
      endif()
    endif()
  endforeach()
endforeach()

# The consumers start the library: a home and locale settings of their own.
set(ENV{HOME} ${WORK_DIR}/home)
set(ENV{XDG_CONFIG_HOME} ${WORK_DIR}/home/.config)
set(ENV{LANG} C.UTF-8)
foreach(name LC_ALL LC_CTYPE LC_MESSAGES LANGUAGE QVLOCALE_LCDATA_PATH QVLOCALE_LCDATA_FILENAME
    QVLOCALE_L10N_CONTROL)
  unset(ENV{${name}})
endforeach()

# find_package
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/cmake-build
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_CXX_COMPILER_LAUNCHER=)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake-build)
run(${WORK_DIR}/cmake-build/consumer ${prefix})
if(NOT LAST_OUTPUT MATCHES "consumer ok")
  message(FATAL_ERROR "find_package consumer printed: ${LAST_OUTPUT}")
endif()

# pkg-config
find_program(PKG_CONFIG pkg-config REQUIRED)
set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
run(${PKG_CONFIG} --cflags --libs qvi18n)
string(STRIP "${LAST_OUTPUT}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${CXX} -std=c++17 ${CONSUMER_DIR}/main.cpp -o ${WORK_DIR}/consumer-pc ${flags})
run(${WORK_DIR}/consumer-pc ${prefix})
if(NOT LAST_OUTPUT MATCHES "consumer ok")
  message(FATAL_ERROR "pkg-config consumer printed: ${LAST_OUTPUT}")
endif()
