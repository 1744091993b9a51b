# Orvane.framework: the classes for Objective-C and Swift, and the symbols of the C++ interface.

find_library(FOUNDATION Foundation REQUIRED)
target_link_libraries(orvane_apple PRIVATE ${FOUNDATION})
if(NOT CMAKE_SYSTEM_NAME STREQUAL "Darwin" OR ORVANE_CATALYST)
  find_library(UIKIT UIKit REQUIRED)
  find_library(CORE_TELEPHONY CoreTelephony REQUIRED)
  target_link_libraries(orvane_apple PRIVATE ${UIKIT} ${CORE_TELEPHONY})
endif()

set(header ${CMAKE_CURRENT_SOURCE_DIR}/include/Orvane/Orvane.h)
set(module_map ${CMAKE_CURRENT_SOURCE_DIR}/framework/module.modulemap)
set(privacy ${PROJECT_SOURCE_DIR}/bindings/PrivacyInfo.xcprivacy)
target_sources(orvane_apple PRIVATE ${header} ${module_map} ${privacy})
set_source_files_properties(${module_map} PROPERTIES MACOSX_PACKAGE_LOCATION Modules)
set_target_properties(orvane_apple PROPERTIES
  OUTPUT_NAME Orvane
  FRAMEWORK TRUE
  FRAMEWORK_VERSION A
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  PUBLIC_HEADER ${header}
  RESOURCE ${privacy}
  MACOSX_FRAMEWORK_INFO_PLIST ${CMAKE_CURRENT_SOURCE_DIR}/framework/Info.plist.in
  MACOSX_FRAMEWORK_IDENTIFIER com.orvane.Orvane
  MACOSX_FRAMEWORK_BUNDLE_VERSION ${PROJECT_VERSION}
  MACOSX_FRAMEWORK_SHORT_VERSION_STRING ${PROJECT_VERSION}
  INSTALL_NAME_DIR @rpath)

if(CMAKE_SYSTEM_NAME STREQUAL "Darwin")
  # A versioned framework has links to its current version. CMake makes the others.
  add_custom_command(TARGET orvane_apple POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E create_symlink
      Versions/Current/Modules $<TARGET_BUNDLE_DIR:orvane_apple>/Modules)
endif()
