# Runs after everything was installed: what was installed for all is of use to all, so the new folders are open to
# them whatever the umask of the one who installs. CMake sees to that for the innermost folders only.
foreach(folder ${FOLIOWELD_NEW_FOLDERS})
  if(IS_DIRECTORY "${folder}")
    file(CHMOD "${folder}" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                       WORLD_READ WORLD_EXECUTE)
  endif()
endforeach()
