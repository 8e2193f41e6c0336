# What belongs to folioweld-prepare. All of it is one component, since it needs a library that nothing else does.
configure_file(folioweld-prepare.1.in folioweld-prepare.1 @ONLY)
folioweld_compress(${CMAKE_CURRENT_BINARY_DIR}/folioweld-prepare.1.gz ${CMAKE_CURRENT_BINARY_DIR}/folioweld-prepare.1)
add_custom_target(man_page_of_extras ALL DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/folioweld-prepare.1.gz)

install(TARGETS folioweld-prepare RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT extras)
# The window program looks for it beside itself.
file(RELATIVE_PATH program ${CMAKE_INSTALL_FULL_LIBEXECDIR}/folioweld ${CMAKE_INSTALL_FULL_BINDIR}/folioweld-prepare)
file(CREATE_LINK ${program} ${CMAKE_CURRENT_BINARY_DIR}/folioweld-prepare SYMBOLIC)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/folioweld-prepare DESTINATION ${FOLIOWELD_PRIVATE_DIR} COMPONENT extras)

install(FILES ${CMAKE_CURRENT_BINARY_DIR}/folioweld-prepare.1.gz DESTINATION ${FOLIOWELD_MAN_DIR} COMPONENT extras)
install(FILES folioweld-prepare.bash DESTINATION ${FOLIOWELD_COMPLETION_DIR} RENAME folioweld-prepare COMPONENT extras)
install(FILES folioweld-prepare.zsh DESTINATION ${FOLIOWELD_ZSH_COMPLETION_DIR} RENAME _folioweld-prepare COMPONENT extras)
install(FILES folioweld-prepare.fish DESTINATION ${FOLIOWELD_FISH_COMPLETION_DIR} COMPONENT extras)
if(FOLIOWELD_WINDOW)
  folioweld_install_entries(extras)
endif()
