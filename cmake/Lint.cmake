# Checks of the sources and of the built program, as tests with the label "lint". One preset of several
# asks for them: they say the same whatever the flags of the build are.
option(FOLIOWELD_LINT "Add the checks of the sources as tests (needs clang-tidy-14 and clang-format-14)" OFF)
if(NOT FOLIOWELD_LINT)
  return()
endif()

function(folioweld_add_check NAME SCRIPT)
  add_test(NAME ${NAME} COMMAND ${PROJECT_SOURCE_DIR}/scripts/${SCRIPT} ${ARGN})
  set_tests_properties(${NAME} PROPERTIES LABELS lint)
endfunction()

folioweld_add_check(folders_use_only_what_they_may check-layers.py)
folioweld_add_check(format check-format.sh)
folioweld_add_check(messages_are_explained check-messages.py)
folioweld_add_check(rules_are_where_the_page_says check-architecture.py)
folioweld_add_check(headers_stand_alone check-headers.sh ${CMAKE_CXX_COMPILER})
folioweld_add_check(clang_tidy check-clang-tidy.sh ${PROJECT_BINARY_DIR}/clang-tidy)
set_tests_properties(headers_stand_alone clang_tidy PROPERTIES PROCESSORS 2 TIMEOUT 2400 LABELS "lint;long")
# The longest of all tests: one that starts last leaves a core idle.
set_tests_properties(clang_tidy PROPERTIES COST 1000)
folioweld_add_check(mutations_apply mutate.py --check)
folioweld_add_check(options_are_the_same_everywhere check-options.py $<TARGET_FILE:folioweld>)
folioweld_add_check(no_toolkit check-no-toolkit.sh $<TARGET_FILE:folioweld>)
