# What belongs to folioweld-prepare and folioweld-carry. All of it is one component, since it needs a library that nothing
# else does.
foreach(program folioweld-prepare folioweld-carry)
  configure_file(${program}.1.in ${program}.1 @ONLY)
  folioweld_compress(${CMAKE_CURRENT_BINARY_DIR}/${program}.1.gz ${CMAKE_CURRENT_BINARY_DIR}/${program}.1)
  add_custom_target(man_page_of_${program} ALL DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/${program}.1.gz)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${program}.1.gz DESTINATION ${FOLIOWELD_MAN_DIR} COMPONENT extras)

  install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT extras)
  # The window program looks for it beside itself.
  file(RELATIVE_PATH way ${CMAKE_INSTALL_FULL_LIBEXECDIR}/folioweld ${CMAKE_INSTALL_FULL_BINDIR}/${program})
  file(CREATE_LINK ${way} ${CMAKE_CURRENT_BINARY_DIR}/${program} SYMBOLIC)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${program} DESTINATION ${FOLIOWELD_PRIVATE_DIR} COMPONENT extras)
endforeach()

install(FILES folioweld-prepare.bash DESTINATION ${FOLIOWELD_COMPLETION_DIR} RENAME folioweld-prepare COMPONENT extras)
install(FILES folioweld-prepare.zsh DESTINATION ${FOLIOWELD_ZSH_COMPLETION_DIR} RENAME _folioweld-prepare COMPONENT extras)
install(FILES folioweld-prepare.fish DESTINATION ${FOLIOWELD_FISH_COMPLETION_DIR} COMPONENT extras)
if(FOLIOWELD_WINDOW)
  folioweld_install_entries(extras)
endif()
