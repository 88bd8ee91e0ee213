include(CMakePackageConfigHelpers)
include(cmake/PublicHeaders.cmake)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/sensorcontrol)

set(libraries sensorcontrol)
if(SENSORCONTROL_BUILD_HOST)
  list(APPEND libraries sensorhost)
endif()
install(TARGETS ${libraries} EXPORT sensorcontrolTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})

public_headers(headers ${PROJECT_SOURCE_DIR}/src)
if(NOT SENSORCONTROL_BUILD_HOST)
  list(FILTER headers EXCLUDE REGEX "^host/(linux|imaging)/")
endif()
foreach(header ${headers})
  cmake_path(GET header PARENT_PATH folder)
  install(FILES src/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/sensorcontrol/${folder})
endforeach()

install(EXPORT sensorcontrolTargets NAMESPACE sensorcontrol:: DESTINATION ${package_folder})
configure_package_config_file(packaging/sensorcontrolConfig.cmake.in ${PROJECT_BINARY_DIR}/sensorcontrolConfig.cmake
                              INSTALL_DESTINATION ${package_folder} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/sensorcontrolConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/sensorcontrolConfig.cmake ${PROJECT_BINARY_DIR}/sensorcontrolConfigVersion.cmake
        DESTINATION ${package_folder})

# Relative to where the file lies, so that an unpacked archive works from any folder.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
           OUTPUT_VARIABLE SENSORCONTROL_PC_PREFIX)
foreach(library ${libraries})
  configure_file(packaging/${library}.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

install(FILES README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs packaging/consumer packaging/hostlayer DESTINATION ${CMAKE_INSTALL_DOCDIR})

if(TARGET sensorctl)
  set_target_properties(sensorctl PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS sensorctl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  if(EXISTS ${PROJECT_SOURCE_DIR}/tools/sensorctl/sensorctl.1)
    install(FILES tools/sensorctl/sensorctl.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  endif()
  if(EXISTS ${PROJECT_SOURCE_DIR}/tools/sensorctl/sensorctl.bash)
    install(FILES tools/sensorctl/sensorctl.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
            RENAME sensorctl)
  endif()
endif()
