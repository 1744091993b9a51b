# Installs the manual page and the completions of a tool: NAME.1, NAME.bash and _NAME beside its sources.

include(GNUInstallDirs)

function(orvane_install_pages name)
  install(FILES ${name}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES ${name}.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${name}
    COMPONENT tools)
  install(FILES _${name} DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions COMPONENT tools)
endfunction()
