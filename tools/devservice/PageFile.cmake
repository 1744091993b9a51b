# Writes PageFile.cpp, with the page's files, into the build folder of the including CMakeLists.txt.
foreach(type html css js svg)
  set(file ${CMAKE_CURRENT_LIST_DIR}/page/page.${type})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  file(READ ${file} page_${type})
endforeach()
configure_file(${CMAKE_CURRENT_LIST_DIR}/PageFile.cpp.in PageFile.cpp @ONLY)
