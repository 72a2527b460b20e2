# `cpack -G DEB` in the build tree: one Debian package per install component,
# named the way Debian names a library's packages, and held to lintian's bar
# (`lintian -I -E --pedantic` finds no error and no warning). Informational
# tags that stay, and why:
# - no-symbols-control-file: a symbols file for a C++ library lists mangled
#   names that change with the compiler; the shlibs file (>= this version) is
#   what dependent packages need.
# - binary-has-unneeded-section .comment: the compiler's version string in
#   the library and the tool, which Debian's own tools strip and cpack's strip
#   keeps; it costs a few bytes and nothing else.
# Each package overrides one warning, initial-upload-closes-no-bugs: they are
# built outside Debian's archive, so there is no request bug to close.
set(CPACK_PACKAGE_NAME mavprotobuf)
set(CPACK_PACKAGE_VENDOR "Tarnwick")
set(CPACK_PACKAGE_CONTACT "MavProtobuf developers <mavprotobuf@tarnwick.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Typed values and property trees carried as protocol buffers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
# The first Debian revision of this version: the packages are not native ones.
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(MAV_DEBIAN_VERSION ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian/drop_ldconfig_scripts.cmake)

set(CPACK_COMPONENTS_ALL runtime development)
if(MAV_PROTOBUF_BUILD_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tool)
endif()

# What describes the library in every package's extended description.
set(MAV_DEBIAN_ABOUT
  "MavProtobuf gives programs one self-describing model of typed values (scalars\n"
  "and n-dimensional arrays of sixteen element kinds) and property trees, carried\n"
  "over the wire in the protocol-buffer encoding of the schema Mav.proto.\n")
string(CONCAT MAV_DEBIAN_ABOUT ${MAV_DEBIAN_ABOUT})

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libmavprotobuf${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# Only the library's package holds a shared object, so only it gets a shlibs
# file.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
  "MavProtobuf shared library\n${MAV_DEBIAN_ABOUT}"
  "This package holds the shared library: the message classes on the system\n"
  "protocol-buffer runtime, the typed-value layer and the natural JSON form.")
string(CONCAT CPACK_COMPONENT_RUNTIME_DESCRIPTION ${CPACK_COMPONENT_RUNTIME_DESCRIPTION})

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libmavprotobuf-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libprotobuf-dev (>= 3.21)")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
  "MavProtobuf development files\n${MAV_DEBIAN_ABOUT}"
  "This package holds what it takes to build against the library: the headers,\n"
  "Mav.proto for schemas that import it, the CMake package and the pkg-config\n"
  "file.")
string(CONCAT CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION ${CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION})

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME mav-tools)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
# The tool's dependency on our own library comes from the component
# dependency below; dpkg-shlibdeps only needs to find the library to read the
# rest.
get_target_property(MAV_LIBRARY_DIR MavProtobuf BINARY_DIR)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${MAV_LIBRARY_DIR})
set(CPACK_COMPONENT_TOOL_DEPENDS runtime)
set(CPACK_COMPONENT_TOOL_DESCRIPTION
  "mav: show, check and convert MavProtobuf property trees\n${MAV_DEBIAN_ABOUT}"
  "This package holds the mav command-line tool, which shows, checks and\n"
  "converts files of such trees, with its manual page and bash completion.")
string(CONCAT CPACK_COMPONENT_TOOL_DESCRIPTION ${CPACK_COMPONENT_TOOL_DESCRIPTION})

# Every package carries its copyright, changelog and lintian overrides. They are installed only
# when a component is installed on its own, as cpack does, so that
# `cmake --install` into a prefix does not get Debian's files.
find_program(MAV_GZIP gzip REQUIRED)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(MAV_DEBIAN_PACKAGE ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(doc_dir ${PROJECT_BINARY_DIR}/debian/${MAV_DEBIAN_PACKAGE})
  configure_file(${CMAKE_CURRENT_LIST_DIR}/debian/changelog.in ${doc_dir}/changelog @ONLY)
  execute_process(COMMAND ${MAV_GZIP} -9nf ${doc_dir}/changelog COMMAND_ERROR_IS_FATAL ANY)
  file(RENAME ${doc_dir}/changelog.gz ${doc_dir}/changelog.Debian.gz)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/debian/copyright ${doc_dir}/changelog.Debian.gz
          DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${MAV_DEBIAN_PACKAGE}
          COMPONENT ${component} EXCLUDE_FROM_ALL)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/debian/lintian-overrides.in
                 ${doc_dir}/overrides/${MAV_DEBIAN_PACKAGE} @ONLY)
  install(FILES ${doc_dir}/overrides/${MAV_DEBIAN_PACKAGE}
          DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides
          COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()

include(CPack)
