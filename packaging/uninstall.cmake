# cmake -D BUILD=FOLDER -P uninstall.cmake: takes away what was last installed from this build folder, and the
# folders that the installation made, as far as nobody else uses them. DESTDIR has to be as it was then.
file(GLOB manifests ${BUILD}/install_manifest*.txt)
if(NOT manifests)
  message(FATAL_ERROR "Nothing was installed from ${BUILD}")
endif()

foreach(manifest ${manifests})
  file(STRINGS ${manifest} files)
  foreach(file ${files})
    file(REMOVE "$ENV{DESTDIR}${file}")
    if(EXISTS "$ENV{DESTDIR}${file}" OR IS_SYMLINK "$ENV{DESTDIR}${file}")
      message(FATAL_ERROR "Could not be removed: $ENV{DESTDIR}${file}")
    endif()
  endforeach()
endforeach()

set(folders)
if(EXISTS ${BUILD}/install_folders.txt)
  file(STRINGS ${BUILD}/install_folders.txt folders)
endif()
list(REMOVE_DUPLICATES folders)
# Inner folders before those that hold them.
list(SORT folders ORDER DESCENDING)
foreach(folder ${folders})
  # Refuses what is not empty, and that is all that is asked of it.
  execute_process(COMMAND rmdir "${folder}" ERROR_QUIET)
endforeach()
file(REMOVE ${manifests} ${BUILD}/install_folders.txt)
