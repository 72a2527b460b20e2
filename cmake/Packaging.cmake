# `cpack -G DEB` in the build tree: one Debian package per install component,
# named the way Debian names a library's packages.
set(CPACK_PACKAGE_NAME mavprotobuf)
set(CPACK_PACKAGE_VENDOR "Tarnwick")
set(CPACK_PACKAGE_CONTACT "MavProtobuf developers <mavprotobuf@tarnwick.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Typed values and property trees carried as protocol buffers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_COMPONENTS_ALL runtime development)
if(MAV_PROTOBUF_BUILD_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tool)
endif()

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libmavprotobuf${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "MavProtobuf shared library")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libmavprotobuf-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libprotobuf-dev (>= 3.21)")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
  "MavProtobuf headers, Mav.proto, CMake package and pkg-config file")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME mav-tools)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
# The tool's dependency on our own library comes from the component
# dependency below; dpkg-shlibdeps only needs to find the library to read the
# rest.
get_target_property(MAV_LIBRARY_DIR MavProtobuf BINARY_DIR)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${MAV_LIBRARY_DIR})
set(CPACK_COMPONENT_TOOL_DEPENDS runtime)
set(CPACK_COMPONENT_TOOL_DESCRIPTION "mav: show, check and convert MavProtobuf property trees")

include(CPack)
