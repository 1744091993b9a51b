# Run by CPack on the finished Debian packages. The library's has what CPack cannot be told otherwise: ldconfig runs by
# dpkg's trigger and not by scripts, and libcurl is named once, in the version that the sources need.

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
  execute_process(COMMAND dpkg-deb --root-owner-group --build ${files} ${package} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
