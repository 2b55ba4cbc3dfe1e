include(CMakePackageConfigHelpers)

install(TARGETS qvi18n qvi18n_usage qvresource_core
  EXPORT qvi18nTargets
  LIBRARY DESTINATION ${QVI18N_INSTALL_BINDIR}
  RUNTIME DESTINATION ${QVI18N_INSTALL_BINDIR}
  ARCHIVE DESTINATION ${QVI18N_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/qvi18n DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT qvi18nTargets NAMESPACE qvi18n:: DESTINATION ${QVI18N_INSTALL_CMAKEDIR})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/qvi18nConfig.cmake.in
  ${CMAKE_BINARY_DIR}/qvi18nConfig.cmake INSTALL_DESTINATION ${QVI18N_INSTALL_CMAKEDIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/qvi18nConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/qvi18nConfig.cmake ${CMAKE_BINARY_DIR}/qvi18nConfigVersion.cmake
  DESTINATION ${QVI18N_INSTALL_CMAKEDIR})

configure_file(${PROJECT_SOURCE_DIR}/cmake/qvi18n.pc.in ${CMAKE_BINARY_DIR}/qvi18n.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/qvi18n.pc DESTINATION lib/pkgconfig)

if(EXISTS ${QVI18N_DATA_DIR}/lcdata.xml)
  install(FILES ${QVI18N_DATA_DIR}/lcdata.xml DESTINATION bin)
endif()
install(DIRECTORY ${QVI18N_DATA_DIR}/resources/ DESTINATION resources)
if(NOT QVI18N_FUZZ)
  install(DIRECTORY ${CMAKE_BINARY_DIR}/derived/ DESTINATION derived)
endif()
