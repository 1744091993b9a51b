# Run by CPack on the finished Debian packages. Changes what CPack has no setting for in the library's
# package: dpkg's trigger runs ldconfig instead of scripts, and libcurl is named once, in the version that the
# sources need.

foreach(package IN LISTS CPACK_PACKAGE_FILES)
  if(NOT package MATCHES "/liborvane[0-9]")
    continue()
  endif()
  set(files ${CPACK_TEMPORARY_DIRECTORY}/control)
  file(REMOVE_RECURSE ${files})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${files} COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE ${files}/DEBIAN/postinst ${files}/DEBIAN/postrm)
  file(WRITE ${files}/DEBIAN/triggers "activate-noawait ldconfig\n")
  file(READ ${files}/DEBIAN/control control)
  string(REGEX REPLACE "(libcurl4[a-z0-9]*) \\(>= [0-9.]+\\)" "\\1 (>= 7.87)" control "${control}")
  file(WRITE ${files}/DEBIAN/control "${control}")
  execute_process(COMMAND dpkg-deb --root-owner-group --build ${files} ${package}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
