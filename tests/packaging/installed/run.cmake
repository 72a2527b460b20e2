# Installs the built library into a scratch prefix, then configures, builds and
# runs the consumer project against that prefix.
file(REMOVE_RECURSE ${WORK_DIR})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/build
                        -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix -DWITH_TOOL=${WITH_TOOL}
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${WORK_DIR}/build/consumer COMMAND_ERROR_IS_FATAL ANY)

# Without the tool's package, asking for the component names what to install.
if(WITH_TOOL)
  file(GLOB_RECURSE tool_targets ${WORK_DIR}/prefix/*/MavProtobufToolTargets*.cmake)
  file(REMOVE ${tool_targets})
  execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/build-without-tool
                          -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix -DWITH_TOOL=ON
                  RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(status EQUAL 0 OR NOT output MATCHES "package[ \n]+mav-tools")
    message(FATAL_ERROR "find_package(MavProtobuf COMPONENTS mav) without the tool:\n${output}")
  endif()
endif()
