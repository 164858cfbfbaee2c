# Finds OpenCV 4 from Debian's split packages (libopencv-<module>-dev).
#
# Debian ships OpenCVConfig.cmake and opencv4.pc only in the libopencv-dev
# meta-package, which drags in about 200 packages. When OpenCV's own CMake
# package is installed it is used as it is; otherwise this module looks for
# the headers under include/opencv4 and one opencv_<module> library per
# requested component, and yields the same imported targets (opencv_core,
# opencv_imgproc, ...) and variables (OpenCV_LIBS, OpenCV_INCLUDE_DIRS,
# OpenCV_VERSION) as OpenCV's own package.

find_package(OpenCV ${OpenCV_FIND_VERSION} CONFIG QUIET
  COMPONENTS ${OpenCV_FIND_COMPONENTS})
if(OpenCV_FOUND)
  if(NOT OpenCV_FIND_QUIETLY)
    message(STATUS "OpenCV ${OpenCV_VERSION}: its own CMake package (${OpenCV_DIR})")
  endif()
  return()
endif()

find_path(OpenCV_INCLUDE_DIR opencv2/core/version.hpp PATH_SUFFIXES opencv4)
mark_as_advanced(OpenCV_INCLUDE_DIR)

if(OpenCV_INCLUDE_DIR)
  file(STRINGS "${OpenCV_INCLUDE_DIR}/opencv2/core/version.hpp" _ocv_version_lines
    REGEX "^#define CV_VERSION_(MAJOR|MINOR|REVISION)[ \t]+[0-9]+")
  foreach(_part MAJOR MINOR REVISION)
    string(REGEX REPLACE ".*#define CV_VERSION_${_part}[ \t]+([0-9]+).*" "\\1"
      _ocv_${_part} "${_ocv_version_lines}")
  endforeach()
  set(OpenCV_VERSION "${_ocv_MAJOR}.${_ocv_MINOR}.${_ocv_REVISION}")
  set(OpenCV_VERSION_MAJOR ${_ocv_MAJOR})
  set(OpenCV_VERSION_MINOR ${_ocv_MINOR})
  set(OpenCV_VERSION_PATCH ${_ocv_REVISION})
endif()

set(_ocv_components ${OpenCV_FIND_COMPONENTS})
if(NOT _ocv_components)
  set(_ocv_components core)
endif()
set(OpenCV_LIBS "")
set(_ocv_missing "")
foreach(_module IN LISTS _ocv_components)
  find_library(OpenCV_${_module}_LIBRARY NAMES opencv_${_module})
  mark_as_advanced(OpenCV_${_module}_LIBRARY)
  if(OpenCV_${_module}_LIBRARY AND OpenCV_INCLUDE_DIR)
    set(OpenCV_${_module}_FOUND TRUE)
    if(NOT TARGET opencv_${_module})
      add_library(opencv_${_module} UNKNOWN IMPORTED)
      set_target_properties(opencv_${_module} PROPERTIES
        IMPORTED_LOCATION "${OpenCV_${_module}_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${OpenCV_INCLUDE_DIR}")
    endif()
    list(APPEND OpenCV_LIBS opencv_${_module})
  else()
    set(OpenCV_${_module}_FOUND FALSE)
    list(APPEND _ocv_missing ${_module})
  endif()
endforeach()
# Every module builds on core: a host linking imgproc alone still needs it.
if(TARGET opencv_core)
  foreach(_module IN LISTS OpenCV_LIBS)
    if(NOT _module STREQUAL "opencv_core")
      set_property(TARGET ${_module} APPEND PROPERTY INTERFACE_LINK_LIBRARIES opencv_core)
    endif()
  endforeach()
endif()
set(OpenCV_INCLUDE_DIRS "${OpenCV_INCLUDE_DIR}")
string(JOIN " " _ocv_wanted ${_ocv_components})

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpenCV
  REQUIRED_VARS OpenCV_INCLUDE_DIR OpenCV_LIBS
  VERSION_VAR OpenCV_VERSION
  HANDLE_COMPONENTS
  REASON_FAILURE_MESSAGE
    "install Debian's split packages libopencv-<module>-dev for: ${_ocv_wanted}")
