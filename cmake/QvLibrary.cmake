# libqvi18n: one object library per source area, so that an area compiles on its own
# (cmake --build <dir> --target qvi18n_<area>), all linked into libqvi18n.so.
set(QVI18N_AREAS core conversion ctype locale catalog filesystem)
set(QVI18N_AREA_DIR_core i18n)
set(QVI18N_AREA_DIR_conversion i18n/conversion)
set(QVI18N_AREA_DIR_ctype i18n/ctype)
set(QVI18N_AREA_DIR_locale i18n/locale)
set(QVI18N_AREA_DIR_catalog i18n/catalog)
set(QVI18N_AREA_DIR_filesystem filesystem)

set(QVI18N_OTHER_PLATFORM_DIRS linux darwin)
list(REMOVE_ITEM QVI18N_OTHER_PLATFORM_DIRS ${QVI18N_PLATFORM_DIR})

add_library(qvi18n_usage INTERFACE)
target_include_directories(qvi18n_usage INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(qvi18n_usage INTERFACE
  qvresource_core ICU::i18n ICU::uc ICU::data EXPAT::EXPAT
  Boost::headers Boost::filesystem Boost::system Boost::thread Boost::date_time
  Threads::Threads ${CMAKE_DL_LIBS})

set(QVI18N_OBJECTS)
foreach(area IN LISTS QVI18N_AREAS)
  set(dir ${QVI18N_AREA_DIR_${area}})
  if(area STREQUAL "core")
    file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${dir}/*.cpp)
  else()
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${dir}/*.cpp)
  endif()
  foreach(other IN LISTS QVI18N_OTHER_PLATFORM_DIRS)
    list(FILTER sources EXCLUDE REGEX "/${other}/")
  endforeach()
  if(NOT sources)
    continue()
  endif()
  add_library(qvi18n_${area} OBJECT ${sources})
  target_include_directories(qvi18n_${area} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_definitions(qvi18n_${area} PRIVATE QVI18N_BUILDING
    QVI18N_PLATFORM_TAG_BUILD="${QVI18N_PLATFORM_TAG}" QVI18N_VERSION_STRING="${PROJECT_VERSION}")
  target_link_libraries(qvi18n_${area} PRIVATE qvi18n_usage qvi18n_warnings)
  list(APPEND QVI18N_OBJECTS $<TARGET_OBJECTS:qvi18n_${area}>)
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
target_link_options(qvi18n PRIVATE -Wl,--no-undefined)
