# Help where people look for it: man pages, made of what the tools and the guide say, and completion for bash and zsh.
find_program(GO_MD2MAN go-md2man REQUIRED)
set(folder ${CMAKE_BINARY_DIR}/man)
set(pages palsim.1 dcecfg.1 palsim-scenario.7)
list(TRANSFORM pages PREPEND ${folder}/)
list(TRANSFORM pages APPEND .gz)
add_custom_command(OUTPUT ${pages} VERBATIM
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/cmake/man_pages.py $<TARGET_FILE:palsim> $<TARGET_FILE:dcecfg>
          ${PROJECT_SOURCE_DIR}/docs/scenarios.md ${folder}
  DEPENDS palsim dcecfg ${PROJECT_SOURCE_DIR}/cmake/man_pages.py ${PROJECT_SOURCE_DIR}/docs/scenarios.md)
add_custom_target(man_pages ALL DEPENDS ${pages})

foreach(section 1 7)
  install(DIRECTORY ${folder}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section}
          FILES_MATCHING PATTERN "*.${section}.gz")
endforeach()
foreach(tool palsim dcecfg)  # bash looks for a file with the tool's name
  install(FILES tools/completions/palsim.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
          RENAME ${tool})
endforeach()
set(zsh site-functions)
if(PAL_FOR_DEBIAN)
  set(zsh vendor-completions)
endif()
install(FILES tools/completions/_palsim DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/${zsh})
