# Finds utf8proc as utf8proc::utf8proc. Uses its own package file for CMake if there is one; Debian has none.

include(FindPackageHandleStandardArgs)

find_package(utf8proc CONFIG QUIET)
if(TARGET utf8proc::utf8proc)
  find_package_handle_standard_args(utf8proc CONFIG_MODE)
  return()
endif()

find_path(UTF8PROC_INCLUDE_DIR utf8proc.h)
find_library(UTF8PROC_LIBRARY utf8proc)
mark_as_advanced(UTF8PROC_INCLUDE_DIR UTF8PROC_LIBRARY)
find_package_handle_standard_args(utf8proc REQUIRED_VARS UTF8PROC_LIBRARY UTF8PROC_INCLUDE_DIR)

if(utf8proc_FOUND AND NOT TARGET utf8proc::utf8proc)
  add_library(utf8proc::utf8proc UNKNOWN IMPORTED)
  set_target_properties(utf8proc::utf8proc PROPERTIES
    IMPORTED_LOCATION ${UTF8PROC_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${UTF8PROC_INCLUDE_DIR})
endif()
