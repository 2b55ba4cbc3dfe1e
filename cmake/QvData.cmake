# Shipped data: the locale database beside the platform folders, the library's own
# catalogs under resources/, both in the build tree as they will be installed.
set(QVI18N_DATA_DIR ${PROJECT_SOURCE_DIR}/data)
file(GLOB_RECURSE QVI18N_DATA_FILES CONFIGURE_DEPENDS
  ${QVI18N_DATA_DIR}/lcdata.xml ${QVI18N_DATA_DIR}/resources/*)
set(QVI18N_DATA_OUTPUTS)
foreach(src IN LISTS QVI18N_DATA_FILES)
  file(RELATIVE_PATH rel ${QVI18N_DATA_DIR} ${src})
  if(rel STREQUAL "lcdata.xml")
    set(dst ${CMAKE_BINARY_DIR}/bin/lcdata.xml)
  else()
    set(dst ${CMAKE_BINARY_DIR}/${rel})
  endif()
  add_custom_command(OUTPUT ${dst}
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${src} ${dst}
    DEPENDS ${src} VERBATIM)
  list(APPEND QVI18N_DATA_OUTPUTS ${dst})
endforeach()
add_custom_target(qvi18n_data ALL DEPENDS ${QVI18N_DATA_OUTPUTS})
add_dependencies(qvi18n qvi18n_data)

# The catalog maps of the library's own catalogs are generated from them, beside resources/ as
# derived/share/resources/<component>/catalog_map.xml, by the library's own writer.
if(NOT QVI18N_FUZZ)
  add_executable(qvi18n_catalog_maps ${PROJECT_SOURCE_DIR}/tools/catalog_maps/main.cpp)
  target_link_libraries(qvi18n_catalog_maps PRIVATE qvi18n::qvi18n qvi18n_warnings)
  set_target_properties(qvi18n_catalog_maps PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tools)
  file(GLOB QVI18N_CATALOG_COMPONENTS LIST_DIRECTORIES true CONFIGURE_DEPENDS
    RELATIVE ${QVI18N_DATA_DIR}/resources ${QVI18N_DATA_DIR}/resources/*)
  set(QVI18N_CATALOG_MAPS)
  foreach(component IN LISTS QVI18N_CATALOG_COMPONENTS)
    if(IS_DIRECTORY ${QVI18N_DATA_DIR}/resources/${component})
      list(APPEND QVI18N_CATALOG_MAPS ${CMAKE_BINARY_DIR}/derived/share/resources/${component}/catalog_map.xml)
    endif()
  endforeach()
  # The writer leaves a map with the right bytes alone; the touch tells the build it is current.
  add_custom_command(OUTPUT ${QVI18N_CATALOG_MAPS}
    COMMAND qvi18n_catalog_maps ${CMAKE_BINARY_DIR}
    COMMAND ${CMAKE_COMMAND} -E touch ${QVI18N_CATALOG_MAPS}
    DEPENDS qvi18n_catalog_maps ${QVI18N_DATA_OUTPUTS} VERBATIM)
  add_custom_target(qvi18n_catalog_maps_generated ALL DEPENDS ${QVI18N_CATALOG_MAPS})
endif()
