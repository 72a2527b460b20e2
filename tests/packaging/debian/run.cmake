# Builds the Debian packages from the build tree, unpacks them into a scratch
# root with dpkg -x, and builds and runs a consumer through pkg-config against
# that root alone.
file(REMOVE_RECURSE ${WORK_DIR})
execute_process(COMMAND ${CPACK} -G DEB -B ${WORK_DIR}/packages --config ${BUILD_DIR}/CPackConfig.cmake
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(GLOB packages ${WORK_DIR}/packages/*.deb)
set(expected libmavprotobuf1 libmavprotobuf-dev)
if(WITH_TOOL)
  list(APPEND expected mav-tools)
endif()
list(LENGTH expected wanted)
list(LENGTH packages made)
if(NOT made EQUAL wanted)
  message(FATAL_ERROR "Expected the packages ${expected}, cpack made: ${packages}")
endif()

set(root ${WORK_DIR}/root)
foreach(package IN LISTS packages)
  execute_process(COMMAND dpkg-deb --field ${package} Package OUTPUT_VARIABLE name
                  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  list(REMOVE_ITEM expected ${name})
  execute_process(COMMAND dpkg -x ${package} ${root} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
if(expected)
  message(FATAL_ERROR "Missing packages: ${expected}")
endif()

file(GLOB_RECURSE pc_files ${root}/*/mavprotobuf.pc)
file(GLOB_RECURSE sonames ${root}/*/libMavProtobuf.so.1)
if(NOT pc_files OR NOT sonames)
  message(FATAL_ERROR "No mavprotobuf.pc or libMavProtobuf.so.1 under ${root}")
endif()
get_filename_component(pc_dir ${pc_files} DIRECTORY)
get_filename_component(lib_dir ${sonames} DIRECTORY)

set(pkg_env ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_dir} PKG_CONFIG_SYSROOT_DIR=${root})
execute_process(COMMAND ${pkg_env} ${PKG_CONFIG} --cflags --libs mavprotobuf
                OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${pkg_env} ${PKG_CONFIG} --variable=protodir mavprotobuf
                OUTPUT_VARIABLE proto_dir OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
# pkgconf puts the sysroot before variables too; pkg-config does not.
if(NOT EXISTS ${proto_dir}/Mav.proto AND NOT EXISTS ${root}${proto_dir}/Mav.proto)
  message(FATAL_ERROR "pkg-config's protodir '${proto_dir}' holds no Mav.proto")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
execute_process(COMMAND ${CXX} -std=c++17 ${SOURCE_DIR}/consumer.cc -o ${WORK_DIR}/consumer ${flags}
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${lib_dir} ${WORK_DIR}/consumer
                COMMAND_ERROR_IS_FATAL ANY)
if(WITH_TOOL)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${lib_dir} ${root}/usr/bin/mav --version
                  OUTPUT_VARIABLE version COMMAND_ERROR_IS_FATAL ANY)
  if(NOT version MATCHES "mav ")
    message(FATAL_ERROR "mav --version printed '${version}'")
  endif()
endif()
