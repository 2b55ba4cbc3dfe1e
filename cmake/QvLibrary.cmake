# libqvi18n: one object library per area, all linked into libqvi18n.so. The areas are floors;
# an area may include the headers of, and call into, only its own floor and those beneath:
#
#   1 locale       i18n/locale (not database/, startup/)   config.hpp, i18n/*.hpp, i18n/locale/*
#   2 conversion   i18n/conversion                           i18n/conversion/
#   3 ctype        i18n/ctype                                i18n/ctype/
#   4 filesystem   filesystem                                filesystem/
#   5 database     i18n/locale/database                      i18n/locale/database/
#   5 catalog      i18n/catalog                              i18n/catalog/, resource_core/
#   6 startup      i18n/locale/startup                       i18n/locale/startup/
#
# The build enforces it three times. Each area compiles against a staged include directory
# (<build>/floors/<area>/include) holding links to exactly the public headers of the floors it
# may see and to its own private headers, so an include of a higher floor's header is not found.
# Each floor with sources links, with the floors beneath, into a shared library of its own
# under <build>/floors/lib with -Wl,--no-undefined, so a call into a higher floor does not link.
# And before an area compiles, cmake/QvFloorCheck.cmake reads its files for the ways around those
# two: a quoted include that reaches another area's file beside the including one, ".." in an
# include, a weak declaration, dlsym/dlopen.
# Sources and headers are globbed: a file dropped into an area's folder is picked up.
set(QVI18N_AREAS locale conversion ctype filesystem database catalog startup)

set(QVI18N_FLOOR_locale 1)
set(QVI18N_FLOOR_conversion 2)
set(QVI18N_FLOOR_ctype 3)
set(QVI18N_FLOOR_filesystem 4)
set(QVI18N_FLOOR_database 5)
set(QVI18N_FLOOR_catalog 5)
set(QVI18N_FLOOR_startup 6)

# Source folders (relative to the project) and public header folders (relative to
# include/qvi18n). A folder's subfolders belong to it unless another area claims them.
set(QVI18N_AREA_SOURCES_locale i18n/locale)
set(QVI18N_AREA_SOURCES_conversion i18n/conversion)
set(QVI18N_AREA_SOURCES_ctype i18n/ctype)
set(QVI18N_AREA_SOURCES_filesystem filesystem)
set(QVI18N_AREA_SOURCES_database i18n/locale/database)
set(QVI18N_AREA_SOURCES_catalog i18n/catalog)
set(QVI18N_AREA_SOURCES_startup i18n/locale/startup)
set(QVI18N_AREA_HEADERS_locale i18n/locale)
set(QVI18N_AREA_HEADERS_conversion i18n/conversion)
set(QVI18N_AREA_HEADERS_ctype i18n/ctype)
set(QVI18N_AREA_HEADERS_filesystem filesystem)
set(QVI18N_AREA_HEADERS_database i18n/locale/database)
set(QVI18N_AREA_HEADERS_catalog i18n/catalog resource_core)
set(QVI18N_AREA_HEADERS_startup i18n/locale/startup)
# Headers at the top of include/qvi18n and include/qvi18n/i18n (config.hpp, ustring.hpp) are
# the locale core's; the umbrella headers see everything and belong to no floor.
set(QVI18N_UMBRELLA_HEADERS qvi18n.hpp qvi18n_internals.hpp)

# Third-party dependencies; Expat only where XML is read. The catalog floor's link check adds the
# resource core (its target would bring the whole include/ directory into a compile).
set(QVI18N_DEPS_COMMON ICU::i18n ICU::uc ICU::data
  Boost::headers Boost::filesystem Boost::system Boost::thread Boost::date_time
  Threads::Threads ${CMAKE_DL_LIBS})
set(QVI18N_DEPS_locale)
set(QVI18N_DEPS_conversion)
set(QVI18N_DEPS_ctype)
set(QVI18N_DEPS_filesystem)
set(QVI18N_DEPS_database EXPAT::EXPAT)
set(QVI18N_DEPS_catalog EXPAT::EXPAT)
set(QVI18N_DEPS_startup)

set(QVI18N_OTHER_PLATFORM_DIRS linux darwin)
list(REMOVE_ITEM QVI18N_OTHER_PLATFORM_DIRS ${QVI18N_PLATFORM_DIR})

# What a caller of the library gets: every public header and every dependency.
add_library(qvi18n_usage INTERFACE)
target_include_directories(qvi18n_usage INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(qvi18n_usage INTERFACE qvresource_core EXPAT::EXPAT ${QVI18N_DEPS_COMMON})

# True if `area` may see `other`: a lower floor, or itself.
function(qvi18n_area_sees area other out)
  if(area STREQUAL other OR QVI18N_FLOOR_${other} LESS QVI18N_FLOOR_${area})
    set(${out} TRUE PARENT_SCOPE)
  else()
    set(${out} FALSE PARENT_SCOPE)
  endif()
endfunction()

# Files under `root`/`dir` with `ext`, less those in folders claimed by other areas or meant for
# another platform.
function(qvi18n_area_files area root kind ext out)
  set(files)
  foreach(dir IN LISTS QVI18N_AREA_${kind}_${area})
    file(GLOB_RECURSE found CONFIGURE_DEPENDS ${root}/${dir}/*${ext})
    list(APPEND files ${found})
  endforeach()
  foreach(other IN LISTS QVI18N_AREAS)
    if(other STREQUAL area)
      continue()
    endif()
    foreach(odir IN LISTS QVI18N_AREA_${kind}_${other})
      foreach(dir IN LISTS QVI18N_AREA_${kind}_${area})
        string(FIND "${odir}/" "${dir}/" at)
        if(at EQUAL 0 AND NOT odir STREQUAL dir)
          list(FILTER files EXCLUDE REGEX "^${root}/${odir}/")
        endif()
      endforeach()
    endforeach()
  endforeach()
  foreach(other IN LISTS QVI18N_OTHER_PLATFORM_DIRS)
    list(FILTER files EXCLUDE REGEX "/${other}/")
  endforeach()
  set(${out} ${files} PARENT_SCOPE)
endfunction()

set(QVI18N_PUBLIC_ROOT ${PROJECT_SOURCE_DIR}/include/qvi18n)
set(QVI18N_FLOORS_DIR ${CMAKE_BINARY_DIR}/floors)

# Public headers and sources per area.
foreach(area IN LISTS QVI18N_AREAS)
  qvi18n_area_files(${area} ${QVI18N_PUBLIC_ROOT} HEADERS .hpp headers)
  if(area STREQUAL "locale")
    file(GLOB top CONFIGURE_DEPENDS ${QVI18N_PUBLIC_ROOT}/*.hpp ${QVI18N_PUBLIC_ROOT}/i18n/*.hpp)
    foreach(umbrella IN LISTS QVI18N_UMBRELLA_HEADERS)
      list(REMOVE_ITEM top ${QVI18N_PUBLIC_ROOT}/${umbrella})
    endforeach()
    list(APPEND headers ${top})
  endif()
  set(QVI18N_PUBLIC_HEADERS_${area} ${headers})
  qvi18n_area_files(${area} ${PROJECT_SOURCE_DIR} SOURCES .cpp sources)
  set(QVI18N_SOURCES_${area} ${sources})
  qvi18n_area_files(${area} ${PROJECT_SOURCE_DIR} SOURCES .hpp private)
  set(QVI18N_PRIVATE_HEADERS_${area} ${private})
  set(deps ${QVI18N_DEPS_COMMON})
  foreach(other IN LISTS QVI18N_AREAS)
    qvi18n_area_sees(${area} ${other} sees)
    if(sees)
      list(APPEND deps ${QVI18N_DEPS_${other}})
    endif()
  endforeach()
  list(REMOVE_DUPLICATES deps)
  set(QVI18N_AREA_DEPS_${area} ${deps})
endforeach()

# Every source and public header belongs to an area; one that does not would escape the check.
file(GLOB_RECURSE QVI18N_ALL_SOURCES CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/i18n/*.cpp ${PROJECT_SOURCE_DIR}/filesystem/*.cpp)
file(GLOB_RECURSE QVI18N_ALL_PUBLIC_HEADERS CONFIGURE_DEPENDS ${QVI18N_PUBLIC_ROOT}/*.hpp)
foreach(other IN LISTS QVI18N_OTHER_PLATFORM_DIRS)
  list(FILTER QVI18N_ALL_SOURCES EXCLUDE REGEX "/${other}/")
endforeach()
foreach(umbrella IN LISTS QVI18N_UMBRELLA_HEADERS)
  list(REMOVE_ITEM QVI18N_ALL_PUBLIC_HEADERS ${QVI18N_PUBLIC_ROOT}/${umbrella})
endforeach()
foreach(area IN LISTS QVI18N_AREAS)
  list(REMOVE_ITEM QVI18N_ALL_SOURCES ${QVI18N_SOURCES_${area}})
  list(REMOVE_ITEM QVI18N_ALL_PUBLIC_HEADERS ${QVI18N_PUBLIC_HEADERS_${area}})
endforeach()
if(QVI18N_ALL_SOURCES OR QVI18N_ALL_PUBLIC_HEADERS)
  message(FATAL_ERROR "qvi18n: outside every area (see cmake/QvLibrary.cmake): "
    "${QVI18N_ALL_SOURCES} ${QVI18N_ALL_PUBLIC_HEADERS}")
endif()

# Every public header is reached from one of the two umbrella headers: the public API from
# qvi18n.hpp, the rest from qvi18n_internals.hpp.
set(QVI18N_UMBRELLA_TEXT)
foreach(umbrella IN LISTS QVI18N_UMBRELLA_HEADERS)
  if(EXISTS ${QVI18N_PUBLIC_ROOT}/${umbrella})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${QVI18N_PUBLIC_ROOT}/${umbrella})
    file(READ ${QVI18N_PUBLIC_ROOT}/${umbrella} text)
    string(APPEND QVI18N_UMBRELLA_TEXT "${text}")
  endif()
endforeach()
foreach(area IN LISTS QVI18N_AREAS)
  foreach(header IN LISTS QVI18N_PUBLIC_HEADERS_${area})
    file(RELATIVE_PATH rel ${PROJECT_SOURCE_DIR}/include ${header})
    string(FIND "${QVI18N_UMBRELLA_TEXT}" "#include <${rel}>" at)
    if(at EQUAL -1)
      message(FATAL_ERROR "qvi18n: include <${rel}> from include/qvi18n/qvi18n.hpp if it is "
        "public API a caller uses, else from include/qvi18n/qvi18n_internals.hpp")
    endif()
  endforeach()
endforeach()

# The staged include directories, remade at every configure so that nothing stale stays.
foreach(area IN LISTS QVI18N_AREAS)
  set(stage ${QVI18N_FLOORS_DIR}/${area}/include)
  set(QVI18N_AREA_INCLUDE_${area} ${stage})
  file(REMOVE_RECURSE ${stage})
  file(MAKE_DIRECTORY ${stage})
  foreach(other IN LISTS QVI18N_AREAS)
    qvi18n_area_sees(${area} ${other} sees)
    if(sees)
      foreach(header IN LISTS QVI18N_PUBLIC_HEADERS_${other})
        file(RELATIVE_PATH rel ${PROJECT_SOURCE_DIR}/include ${header})
        get_filename_component(parent ${stage}/${rel} DIRECTORY)
        file(MAKE_DIRECTORY ${parent})
        file(CREATE_LINK ${header} ${stage}/${rel} SYMBOLIC)
      endforeach()
    endif()
  endforeach()
  foreach(header IN LISTS QVI18N_PRIVATE_HEADERS_${area})
    file(RELATIVE_PATH rel ${PROJECT_SOURCE_DIR} ${header})
    get_filename_component(parent ${stage}/${rel} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${header} ${stage}/${rel} SYMBOLIC)
  endforeach()
endforeach()

set(QVI18N_OBJECTS)
set(QVI18N_BUILT_AREAS)
foreach(area IN LISTS QVI18N_AREAS)
  if(NOT QVI18N_SOURCES_${area})
    continue()
  endif()
  add_library(qvi18n_${area} OBJECT ${QVI18N_SOURCES_${area}})
  target_include_directories(qvi18n_${area} PRIVATE ${QVI18N_AREA_INCLUDE_${area}})
  target_compile_definitions(qvi18n_${area} PRIVATE QVI18N_BUILDING)
  target_link_libraries(qvi18n_${area} PRIVATE ${QVI18N_AREA_DEPS_${area}} qvi18n_warnings)
  list(APPEND QVI18N_OBJECTS $<TARGET_OBJECTS:qvi18n_${area}>)
  list(APPEND QVI18N_BUILT_AREAS ${area})

  # Before the area compiles, its files are read for the ways around the floors (QvFloorCheck).
  set(own ${QVI18N_SOURCES_${area}} ${QVI18N_PRIVATE_HEADERS_${area}} ${QVI18N_PUBLIC_HEADERS_${area}})
  list(JOIN own "\n" own_text)
  set(files ${QVI18N_FLOORS_DIR}/${area}/files.txt)
  file(CONFIGURE OUTPUT ${files} CONTENT "${own_text}\n")
  set(stamp ${QVI18N_FLOORS_DIR}/${area}/files.checked)
  add_custom_command(OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -DAREA=${area} -DFILES=${files} -DSTAMP=${stamp}
      -P ${PROJECT_SOURCE_DIR}/cmake/QvFloorCheck.cmake
    DEPENDS ${own} ${files} ${PROJECT_SOURCE_DIR}/cmake/QvFloorCheck.cmake
    COMMENT "Checking that the ${area} area keeps to its floor" VERBATIM)
  add_custom_target(qvi18n_floor_check_${area} DEPENDS ${stamp})
  add_dependencies(qvi18n_${area} qvi18n_floor_check_${area})
endforeach()
if(TARGET qvi18n_startup)
  target_compile_definitions(qvi18n_startup PRIVATE
    QVI18N_PLATFORM_TAG_BUILD="${QVI18N_PLATFORM_TAG}" QVI18N_VERSION_STRING="${PROJECT_VERSION}")
endif()

# The link half of the check: one shared library per floor, from that floor's objects and those
# beneath, with nothing left undefined. The top floor's is libqvi18n.so itself.
foreach(area IN LISTS QVI18N_BUILT_AREAS)
  if(area STREQUAL "startup")
    continue()
  endif()
  set(objects)
  foreach(other IN LISTS QVI18N_BUILT_AREAS)
    qvi18n_area_sees(${area} ${other} sees)
    if(sees)
      list(APPEND objects $<TARGET_OBJECTS:qvi18n_${other}>)
    endif()
  endforeach()
  add_library(qvi18n_floor_${area} SHARED ${objects})
  target_link_libraries(qvi18n_floor_${area} PRIVATE ${QVI18N_AREA_DEPS_${area}})
  qvi18n_area_sees(${area} catalog sees_catalog)
  if(sees_catalog)
    target_link_libraries(qvi18n_floor_${area} PRIVATE qvresource_core)
  endif()
  target_link_options(qvi18n_floor_${area} PRIVATE -Wl,--no-undefined)
  set_target_properties(qvi18n_floor_${area} PROPERTIES
    LIBRARY_OUTPUT_DIRECTORY ${QVI18N_FLOORS_DIR}/lib)
endforeach()

add_library(qvi18n SHARED ${QVI18N_OBJECTS})
add_library(qvi18n::qvi18n ALIAS qvi18n)
set_target_properties(qvi18n PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  EXPORT_NAME qvi18n
  BUILD_RPATH "${QVI18N_BIN_DIR}"
  INSTALL_RPATH "$ORIGIN")
target_link_libraries(qvi18n PUBLIC qvi18n_usage)
if(NOT QVI18N_FUZZ)
  # (clang leaves the sanitizer runtime to the program, so a fuzz build cannot insist.)
  target_link_options(qvi18n PRIVATE -Wl,--no-undefined)
endif()
