# Run by CPack on the files of the Debian packages, before it makes them. Debian compresses manual pages, and
# has another folder for the zsh completions of packages.

set(files ${CPACK_TEMPORARY_DIRECTORY}/tools${CPACK_INSTALL_PREFIX}/share)
file(GLOB pages ${files}/man/man1/*.1)
if(pages)
  execute_process(COMMAND gzip -9n ${pages} COMMAND_ERROR_IS_FATAL ANY)
  file(RENAME ${files}/zsh/site-functions ${files}/zsh/vendor-completions)
endif()
