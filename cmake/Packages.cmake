# Debian packages, made by scripts/package.sh: libclipparser1 (the shared library), libclipparser-dev (headers, CMake and
# pkg-config files) and clipinfo. One component of the install rules is one package.
set(CLIPPARSER_MAINTAINER "clipparser maintainers <clipparser@localhost>" CACHE STRING "Maintainer of the packages")

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL library development)
if(CLIPPARSER_BUILD_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tool)
endif()
set(CPACK_PACKAGE_NAME clipparser)
set(CPACK_PACKAGE_CONTACT ${CLIPPARSER_MAINTAINER})
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(package_version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(library_package libclipparser${PROJECT_VERSION_MAJOR})

# What the programs link, read from the files; what is made here itself is found in the build tree, and named below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/cmake)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "The shared library.
Opens one MXF clip (SMPTE ST 377-1, OP-1a, frame wrapped) and answers questions
about it: duration, packages, tracks, descriptors, index, and the bytes of the
essence of any edit unit. It only reads, within a fixed pool of memory.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libclipparser-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library_package} (= ${package_version})")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "Headers, and the files by which CMake and pkg-config find the library.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME clipinfo)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION video)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${library_package} (= ${package_version})")
set(CPACK_DEBIAN_TOOL_DESCRIPTION "The program for the command line.
Prints what a clip holds and where each frame lies, checks whether it is whole,
and writes out its essence.")

# Each package brings its copyright and changelog. An installation from the build tree has no use for them.
configure_file(${CMAKE_CURRENT_LIST_DIR}/packages/changelog.Debian.in ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian @ONLY)
execute_process(COMMAND gzip -9nkf changelog.Debian WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
                COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} key)
  install(
    FILES ${CMAKE_CURRENT_LIST_DIR}/packages/copyright ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian.gz
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${key}_PACKAGE_NAME}
    COMPONENT ${component}
    EXCLUDE_FROM_ALL)
endforeach()

include(CPack)
