# Installs the library as the CMake package VexQt, with a component for each of its two libraries,
# and as the pkg-config package vexqt, and the programs. Nothing in the packages names the place
# that they were installed to, so that they may be moved.
#
# What is installed has one of the components library, development, command and inspector.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/VexQt)

# MARK: The library

install(TARGETS vexqt EXPORT VexQt
  LIBRARY COMPONENT library NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development
  FILE_SET HEADERS COMPONENT development)
install(EXPORT VexQt
  NAMESPACE VexQt::
  FILE VexQtTargets.cmake
  DESTINATION ${package}
  COMPONENT development)

if(TARGET vexqt_inspector)
  # Where both are shared, they lie side by side.
  set_target_properties(vexqt_inspector PROPERTIES INSTALL_RPATH "$ORIGIN")
  install(TARGETS vexqt_inspector EXPORT VexQtInspector
    LIBRARY COMPONENT inspector NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development
    FILE_SET HEADERS COMPONENT development)
  install(EXPORT VexQtInspector
    NAMESPACE VexQt::
    FILE VexQtInspectorTargets.cmake
    DESTINATION ${package}
    COMPONENT development)
endif()

# A static library leaves it to its users to link what it needs.
set(VEXQT_NEEDS "")
set(VEXQT_REQUIRES "")
set(VEXQT_DEFINES "")
get_target_property(type vexqt TYPE)
if(type STREQUAL "STATIC_LIBRARY")
  string(CONCAT VEXQT_NEEDS
    "include(CMakeFindDependencyMacro)\n"
    "find_dependency(ICU COMPONENTS uc i18n)\n"
    "find_dependency(JPEG)\n"
    "find_dependency(OpenSSL COMPONENTS Crypto)\n"
    "find_dependency(PNG)\n")
  set(VEXQT_REQUIRES "\nRequires.private: icu-i18n icu-uc libcrypto libjpeg libpng")
  set(VEXQT_DEFINES " -DVEXQT_STATIC_DEFINE")
endif()

# MARK: How others find it

configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/VexQtConfig.cmake.in ${PROJECT_BINARY_DIR}/VexQtConfig.cmake
  INSTALL_DESTINATION ${package}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VexQtConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(
  FILES ${PROJECT_BINARY_DIR}/VexQtConfig.cmake ${PROJECT_BINARY_DIR}/VexQtConfigVersion.cmake
  DESTINATION ${package}
  COMPONENT development)

file(RELATIVE_PATH VEXQT_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${CMAKE_CURRENT_LIST_DIR}/vexqt.pc.in ${PROJECT_BINARY_DIR}/vexqt.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vexqt.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)

# MARK: Programs

# Where the libraries are shared, a program finds them beside itself.
file(RELATIVE_PATH libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
if(TARGET vexqt_command)
  set_target_properties(vexqt_command PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  install(TARGETS vexqt_command COMPONENT command)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/apps/vexqt/schema
    DESTINATION ${CMAKE_INSTALL_DATADIR}/vexqt
    COMPONENT command)
  # Each shell looks for a name of its own.
  set(completions ${PROJECT_SOURCE_DIR}/apps/vexqt/completions)
  install(FILES ${completions}/vexqt.bash RENAME vexqt
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    COMPONENT command)
  install(FILES ${completions}/_vexqt
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
    COMPONENT command)
  install(FILES ${completions}/vexqt.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
    COMPONENT command)
endif()
if(TARGET vexqt_inspector_app)
  set_target_properties(vexqt_inspector_app PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  install(TARGETS vexqt_inspector_app COMPONENT inspector)
  # What desktops need to know of it, laid out as it is installed.
  install(DIRECTORY
    ${PROJECT_SOURCE_DIR}/share/applications
    ${PROJECT_SOURCE_DIR}/share/icons
    ${PROJECT_SOURCE_DIR}/share/metainfo
    ${PROJECT_SOURCE_DIR}/share/mime
    DESTINATION ${CMAKE_INSTALL_DATADIR}
    COMPONENT inspector)
endif()
