# Runs lintian on the packages the debian test built: any error or warning
# fails; informational tags are printed and allowed (cmake/Packaging.cmake says
# why each stays).
if(NOT LINTIAN)
  message("lintian is not installed: the packages are not checked")
  return()
endif()
file(GLOB packages ${PACKAGES_DIR}/*.deb)
if(NOT packages)
  message(FATAL_ERROR "No packages in ${PACKAGES_DIR}")
endif()
execute_process(COMMAND ${LINTIAN} -I -E --pedantic --fail-on error,warning ${packages}
                OUTPUT_VARIABLE report ERROR_VARIABLE report RESULT_VARIABLE status)
message("${report}")
if(NOT status EQUAL 0)
  message(FATAL_ERROR "lintian finds errors or warnings in the packages")
endif()
