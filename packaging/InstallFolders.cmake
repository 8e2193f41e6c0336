# Where an installation puts what: the folders of GNUInstallDirs and those of the desktop's specifications.
# Everything that is installed goes into one of these folders; the uninstallation relies on it.
include(GNUInstallDirs)

set(FOLIOWELD_PRIVATE_DIR ${CMAKE_INSTALL_LIBEXECDIR}/folioweld)
# Where the programs that folioweld starts live, seen from the folder of folioweld.
# Going there from the program and not from the root lets an installation be moved as a whole.
file(RELATIVE_PATH FOLIOWELD_PRIVATE_FOLDER ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBEXECDIR}/folioweld)
# Named as the program, unless the builder chose another folder.
string(REGEX REPLACE "/${PROJECT_NAME}$" "/folioweld" FOLIOWELD_DOC_DIR ${CMAKE_INSTALL_DOCDIR})
set(FOLIOWELD_WINDOW_DOC_DIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/folioweld-window)
set(FOLIOWELD_EXTRAS_DOC_DIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/folioweld-extras)
set(FOLIOWELD_MAN_DIR ${CMAKE_INSTALL_MANDIR}/man1)
set(FOLIOWELD_COMPLETION_DIR ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
# Debian keeps what packages bring apart from what the administrator adds.
set(FOLIOWELD_ZSH_COMPLETION_DIR ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
if(FOLIOWELD_DEBIAN_PACKAGES)
  set(FOLIOWELD_ZSH_COMPLETION_DIR ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
endif()
set(FOLIOWELD_FISH_COMPLETION_DIR ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
set(FOLIOWELD_DESKTOP_DIR ${CMAKE_INSTALL_DATADIR}/applications)
set(FOLIOWELD_SERVICE_MENU_DIR ${CMAKE_INSTALL_DATADIR}/kio/servicemenus)
set(FOLIOWELD_NEMO_ACTION_DIR ${CMAKE_INSTALL_DATADIR}/nemo/actions)
set(FOLIOWELD_METAINFO_DIR ${CMAKE_INSTALL_DATADIR}/metainfo)
set(FOLIOWELD_ICON_DIR ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
set(FOLIOWELD_ICON_SIZES 16 22 24 32 48 64 128 256)

set(folders ${CMAKE_INSTALL_BINDIR} ${FOLIOWELD_DOC_DIR}/examples ${FOLIOWELD_MAN_DIR}
            ${FOLIOWELD_COMPLETION_DIR} ${FOLIOWELD_ZSH_COMPLETION_DIR} ${FOLIOWELD_FISH_COMPLETION_DIR})
if(FOLIOWELD_WINDOW OR FOLIOWELD_PREPARE)
  list(APPEND folders ${FOLIOWELD_PRIVATE_DIR})
endif()
if(FOLIOWELD_WINDOW)
  list(APPEND folders ${FOLIOWELD_DESKTOP_DIR} ${FOLIOWELD_METAINFO_DIR}
       ${FOLIOWELD_WINDOW_DOC_DIR}/images ${FOLIOWELD_SERVICE_MENU_DIR} ${FOLIOWELD_NEMO_ACTION_DIR}
       ${FOLIOWELD_ICON_DIR}/scalable/apps ${FOLIOWELD_ICON_DIR}/symbolic/apps)
  foreach(size ${FOLIOWELD_ICON_SIZES})
    list(APPEND folders ${FOLIOWELD_ICON_DIR}/${size}x${size}/apps)
  endforeach()
endif()

# Packages are put in place and taken away by the package manager.
if(NOT FOLIOWELD_DEBIAN_PACKAGES)
  configure_file(packaging/note_folders.cmake.in note_folders.cmake @ONLY)
  install(SCRIPT ${PROJECT_BINARY_DIR}/note_folders.cmake ALL_COMPONENTS)
  add_custom_target(uninstall
    COMMAND ${CMAKE_COMMAND} -D BUILD=${PROJECT_BINARY_DIR} -P ${PROJECT_SOURCE_DIR}/packaging/uninstall.cmake
    VERBATIM)
endif()
