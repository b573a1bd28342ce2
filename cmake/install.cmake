# Installs the libraries as the CMake package VexQt, and the programs. The package gives VexQt::vexqt,
# and VexQt::inspector to those who ask for the component inspector: nobody else needs Qt. Nothing in
# it names the place that it was installed to, so that it may be moved.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set_target_properties(vexqt PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR})
install(TARGETS vexqt EXPORT VexQt FILE_SET HEADERS)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/VexQt)
install(EXPORT VexQt
  NAMESPACE VexQt::
  FILE VexQtTargets.cmake
  DESTINATION ${package})
if(TARGET vexqt_inspector)
  set_target_properties(vexqt_inspector PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR})
  install(TARGETS vexqt_inspector EXPORT VexQtInspector FILE_SET HEADERS)
  install(EXPORT VexQtInspector
    NAMESPACE VexQt::
    FILE VexQtInspectorTargets.cmake
    DESTINATION ${package})
endif()

# A static library leaves it to its users to link what it needs.
get_target_property(type vexqt TYPE)
set(VEXQT_NEEDS "")
if(type STREQUAL "STATIC_LIBRARY")
  string(CONCAT VEXQT_NEEDS
    "include(CMakeFindDependencyMacro)\n"
    "find_dependency(ICU COMPONENTS uc i18n)\n"
    "find_dependency(JPEG)\n"
    "find_dependency(OpenSSL COMPONENTS Crypto)\n"
    "find_dependency(PNG)\n")
endif()
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/VexQtConfig.cmake.in ${PROJECT_BINARY_DIR}/VexQtConfig.cmake
  INSTALL_DESTINATION ${package}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VexQtConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(
  FILES ${PROJECT_BINARY_DIR}/VexQtConfig.cmake ${PROJECT_BINARY_DIR}/VexQtConfigVersion.cmake
  DESTINATION ${package})

if(TARGET vexqt_command)
  # Where the library is shared, the program finds it beside itself.
  file(RELATIVE_PATH libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(vexqt_command PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  install(TARGETS vexqt_command)
endif()
