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
