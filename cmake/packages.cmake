# The Debian packages, which scripts/package makes by CPack from the components of install.cmake:
#
#   libvexqt1         library
#   libvexqt-dev      development
#   vexqt             command
#   vexqt-inspector   inspector, where it is built
#   vexqt-doc         documentation
#
# What a package needs of others is found out by dpkg-shlibdeps.
#
# Who gives packages to others answers for them, and says so: the address that stands here is read
# by nobody.
set(VEXQT_MAINTAINER "VexQt developers <vexqt@example.org>" CACHE STRING
  "Who answers for the Debian packages: Name <address>.")
set(debian ${PROJECT_SOURCE_DIR}/packaging)
set(version ${PROJECT_VERSION}-1)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vexqt)
set(CPACK_PACKAGE_CONTACT ${VEXQT_MAINTAINER})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES TRUE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src/vexqt)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# Each package has a summary of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_COMPONENTS_ALL)

# MARK: What every package has

find_program(VEXQT_GZIP gzip REQUIRED)
configure_file(${debian}/changelog.in ${PROJECT_BINARY_DIR}/changelog @ONLY)
foreach(changes IN ITEMS ${PROJECT_BINARY_DIR}/changelog ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
  get_filename_component(name ${changes} NAME)
  execute_process(COMMAND ${VEXQT_GZIP} -9nc ${changes}
    OUTPUT_FILE ${PROJECT_BINARY_DIR}/${name}.gz COMMAND_ERROR_IS_FATAL ANY)
endforeach()

# vexqt_package(component package section summary description)
macro(vexqt_package component package section summary description)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  string(TOUPPER ${component} variable)
  set(CPACK_DEBIAN_${variable}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${variable}_PACKAGE_SECTION ${section})
  set(CPACK_COMPONENT_${variable}_DESCRIPTION "${summary}\n${description}")
  set(documents ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package})
  install(FILES ${debian}/copyright DESTINATION ${documents} COMPONENT ${component})
  install(FILES ${PROJECT_BINARY_DIR}/changelog.gz
    DESTINATION ${documents} RENAME changelog.Debian.gz COMPONENT ${component})
  install(FILES ${PROJECT_BINARY_DIR}/CHANGELOG.md.gz
    DESTINATION ${documents} RENAME changelog.gz COMPONENT ${component})
  # Manual pages come as they are written.
  install(CODE "
    file(GLOB_RECURSE pages \$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_MANDIR}/*.[1-9])
    if(pages)
      execute_process(COMMAND ${VEXQT_GZIP} -9nf \${pages} COMMAND_ERROR_IS_FATAL ANY)
    endif()" COMPONENT ${component})
endmacro()

# MARK: The packages

vexqt_package(library libvexqt1 libs
  "library that reads and changes the atoms of QuickTime movies"
  "VexQt reads a movie into a tree of typed atoms, gives every field a name,
and writes what was edited back into the same file without moving the media.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${debian}/triggers)

vexqt_package(development libvexqt-dev libdevel
  "library that reads and changes the atoms of QuickTime movies - headers"
  "This package has what programs are built with: the headers, a CMake package,
a file for pkg-config, and examples. What shows atoms in windows is a static
library; programs with it are built with what this package suggests of Qt.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libvexqt1 (= ${version})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS 
  "qt6-base-dev, qt6-tools-dev, libqt6opengl6-dev, vexqt-doc")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples
  DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/libvexqt-dev
  COMPONENT development
  FILES_MATCHING PATTERN *.cpp)

if(TARGET vexqt_command)
  vexqt_package(command vexqt video
    "shows and changes the atoms of QuickTime movies"
    "The command vexqt tells what is in a movie, as an outline, as a list of
fields or as JSON, and changes it: dates, pixel aspect ratios, colour tags,
metadata. Media never moves, and a save can be taken back.")
  set(CPACK_DEBIAN_COMMAND_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS "libvexqt1 (>= ${PROJECT_VERSION})")
endif()

if(TARGET vexqt_inspector_app)
  vexqt_package(inspector vexqt-inspector video
    "shows and changes the atoms of QuickTime movies in windows"
    "The inspector shows a movie as a tree of atoms, each atom with its fields
and its bytes, and saves what is changed without moving media.")
  set(CPACK_DEBIAN_INSPECTOR_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_INSPECTOR_PACKAGE_DEPENDS "libvexqt1 (>= ${PROJECT_VERSION})")
endif()

vexqt_package(documentation vexqt-doc doc
  "library that reads and changes the atoms of QuickTime movies - manual"
  "This package has the guide, which shows the command by recipes and the
inspector by pictures, and the reference of everything public in the library.")
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html
  DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/vexqt-doc
  COMPONENT documentation)

include(CPack)
