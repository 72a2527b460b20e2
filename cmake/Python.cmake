# The Python package, built against Debian's own python3 and its NumPy and
# pybind11 (python3-dev, python3-numpy, pybind11-dev). Another python3 first
# on PATH (pyenv and the like) is not used: its NumPy would not match. Choose
# one with -DPython3_EXECUTABLE=...; -DMAV_PROTOBUF_BUILD_PYTHON=OFF skips the
# package. Sanitizer and fuzzing builds skip it: their libraries cannot load
# into an interpreter built without them.
set(MAV_PYTHON_DEFAULT ON)
if(MAV_PROTOBUF_SANITIZE OR MAV_PROTOBUF_BUILD_FUZZERS)
  set(MAV_PYTHON_DEFAULT OFF)
endif()
option(MAV_PROTOBUF_BUILD_PYTHON "Build the mavprotobuf Python package when its dependencies are found"
       ${MAV_PYTHON_DEFAULT})
if(NOT MAV_PROTOBUF_BUILD_PYTHON)
  return()
endif()

if(NOT DEFINED Python3_EXECUTABLE AND EXISTS /usr/bin/python3)
  set(Python3_EXECUTABLE /usr/bin/python3)
endif()
find_package(Python3 COMPONENTS Interpreter Development.Module NumPy)
find_package(pybind11 CONFIG QUIET)
if(NOT Python3_FOUND OR NOT Python3_NumPy_FOUND OR NOT pybind11_FOUND)
  message(STATUS "mavprotobuf Python package: skipped (needs python3-dev, python3-numpy and "
                 "pybind11-dev for ${Python3_EXECUTABLE}; scripts/install-deps.sh installs them)")
  return()
endif()
message(STATUS "mavprotobuf Python package: for ${Python3_EXECUTABLE} (${Python3_VERSION})")
add_subdirectory(python)
