# Writes PageFile.cpp, with the page's files, into the build folder of the including CMakeLists.txt.
foreach(name page.html page.css page.js page.svg openapi.json)
  set(file ${CMAKE_CURRENT_LIST_DIR}/page/${name})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  file(READ ${file} ${name})
endforeach()
configure_file(${CMAKE_CURRENT_LIST_DIR}/PageFile.cpp.in PageFile.cpp @ONLY)
