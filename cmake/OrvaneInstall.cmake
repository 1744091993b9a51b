# Says what `cmake --install` puts where. Each of the three components is a Debian package, too:
#   runtime      the shared library
#   development  the headers, the library to link, the files for CMake and pkg-config
#   tools        the programs

include(CMakePackageConfigHelpers)

get_target_property(type orvane TYPE)
string(COMPARE EQUAL ${type} STATIC_LIBRARY is_static)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Orvane)
install(TARGETS orvane EXPORT OrvaneTargets
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development
  FILE_SET HEADERS COMPONENT development
  FILE_SET host_headers COMPONENT development
  FILE_SET c_headers COMPONENT development)
install(EXPORT OrvaneTargets NAMESPACE Orvane:: DESTINATION ${package_dir} COMPONENT development)

configure_package_config_file(cmake/OrvaneConfig.cmake.in ${PROJECT_BINARY_DIR}/OrvaneConfig.cmake
  INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OrvaneConfig.cmake ${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)
if(is_static)
  install(FILES cmake/Findutf8proc.cmake DESTINATION ${package_dir} COMPONENT development)
endif()

# Absolute folders stay; relative ones are found from where the file is.
# The libraries are not under "Requires", or programs would get their compiler flags, which no header needs.
set(libraries "")
if(is_static)
  set(libraries " -lcurl -lutf8proc -pthread")
endif()
foreach(folder IN ITEMS INCLUDEDIR LIBDIR)
  set(${folder} "\${prefix}/${CMAKE_INSTALL_${folder}}")
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
    set(${folder} "${CMAKE_INSTALL_${folder}}")
  endif()
endforeach()
set(prefix ${CMAKE_INSTALL_PREFIX})
if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  file(RELATIVE_PATH prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
  string(PREPEND prefix "\${pcfiledir}/")
endif()
configure_file(cmake/orvane.pc.in ${PROJECT_BINARY_DIR}/orvane.pc.in @ONLY)
file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/$<CONFIG>/orvane.pc INPUT ${PROJECT_BINARY_DIR}/orvane.pc.in)
install(FILES ${PROJECT_BINARY_DIR}/$<CONFIG>/orvane.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# The Debian packages install it as their copyright file instead.
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT license)

if(ORVANE_BUILD_TOOLS)
  if(NOT is_static)
    file(RELATIVE_PATH libraries_from_programs ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(orvane-signin PROPERTIES INSTALL_RPATH $ORIGIN/${libraries_from_programs})
  endif()
  install(TARGETS orvane-signin orvane-devservice COMPONENT tools)
endif()
