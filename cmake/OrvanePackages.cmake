# Makes the Debian packages, one for each component that is installed.

get_target_property(library_dir orvane BINARY_DIR)
set(runtime_package liborvane${PROJECT_VERSION_MAJOR})

set(CPACK_PACKAGE_NAME orvane)
set(CPACK_PACKAGE_CONTACT "the Orvane authors <authors@orvane.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development tools)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${library_dir})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debianFiles.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debianControl.cmake)

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/changelog @ONLY CONTENT [[
orvane (@PROJECT_VERSION@) unstable; urgency=medium

  * Built from the sources of this version.

 -- @CPACK_PACKAGE_CONTACT@  @date@
]])
execute_process(COMMAND gzip -9fn changelog WORKING_DIRECTORY ${PROJECT_BINARY_DIR}
  COMMAND_ERROR_IS_FATAL ANY)

# orvane_package(COMPONENT NAME SECTION SUMMARY TEXT)
function(orvane_package component name section summary text)
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${PROJECT_DESCRIPTION}: ${summary}\n${text}" PARENT_SCOPE)
  set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/${name})
  # For the packages alone: "cmake --install" leaves out what is excluded from all.
  install(FILES LICENSE DESTINATION ${doc_dir} RENAME copyright COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES ${PROJECT_BINARY_DIR}/changelog.gz DESTINATION ${doc_dir} COMPONENT ${component}
    EXCLUDE_FROM_ALL)
endfunction()
orvane_package(runtime ${runtime_package} libs "shared library"
  "A picture code, a code by text message and the login, over JSON and plain HTTP.")
orvane_package(development liborvane-dev libdevel "development files"
  "The headers, the library to link, and the files for CMake and pkg-config.")
orvane_package(tools orvane-tools utils "programs"
  "A sign-in on the command line, and an identity service for development.")

include(CPack)
cpack_add_component(runtime)
cpack_add_component(development DEPENDS runtime)
cpack_add_component(tools DEPENDS runtime)
