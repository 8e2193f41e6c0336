# folioweld_add_suites(PROGRAM LABEL): every suite of the GoogleTest program is a test of CTest, with its name. CTest asks
# the program for them when it starts; a process for every single test would take longer than the tests.
function(folioweld_add_suites program label)
  set(list ${CMAKE_CURRENT_BINARY_DIR}/${program}_suites.cmake)
  file(GENERATE OUTPUT ${list} CONTENT "set(program [[$<TARGET_FILE:${program}>]])
set(label ${label})
set(prefix ${FOLIOWELD_TEST_PREFIX})
include([[${PROJECT_SOURCE_DIR}/cmake/list_suites.cmake]])
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${list})
endfunction()
