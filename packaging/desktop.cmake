# How the desktop finds, shows and starts the window. One id names all of it.
set(id org.folioweld.Folioweld)

install(FILES ${id}.metainfo.xml DESTINATION ${FOLIOWELD_METAINFO_DIR} COMPONENT window)
foreach(size ${FOLIOWELD_ICON_SIZES})
  install(FILES icons/${size}.png DESTINATION ${FOLIOWELD_ICON_DIR}/${size}x${size}/apps RENAME ${id}.png
          COMPONENT window)
endforeach()
install(FILES icons/${id}.svg DESTINATION ${FOLIOWELD_ICON_DIR}/scalable/apps COMPONENT window)
install(FILES icons/${id}-symbolic.svg DESTINATION ${FOLIOWELD_ICON_DIR}/symbolic/apps COMPONENT window)

# The entries name the programs by their whole paths: the folder of folioweld need not be on the desktop's PATH.
# The path is known for certain at the installation, which may be told another prefix.
function(folioweld_install_entries component)
  configure_file(desktop_entry.cmake.in desktop_entry_${component}.cmake @ONLY)
  install(SCRIPT ${CMAKE_CURRENT_BINARY_DIR}/desktop_entry_${component}.cmake COMPONENT ${component})
endfunction()
folioweld_install_entries(window)
