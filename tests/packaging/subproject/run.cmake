# Configures the parent project twice: with MavProtobuf's defaults for a
# subproject (library only), and with every optional part switched on, which
# must not clash with the parent's own target names.
file(REMOVE_RECURSE ${WORK_DIR})
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/library-only
                        -DMAV_PROTOBUF_DIR=${PROJECT_DIR} -DEXPECT_LIBRARY_ONLY=ON
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/everything
                        -DMAV_PROTOBUF_DIR=${PROJECT_DIR}
                        -DMAV_PROTOBUF_BUILD_TESTS=ON -DMAV_PROTOBUF_BUILD_EXAMPLES=ON
                        -DMAV_PROTOBUF_BUILD_BENCHMARKS=ON -DMAV_PROTOBUF_BUILD_TOOLS=ON
                        -DMAV_PROTOBUF_INSTALL=ON
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
