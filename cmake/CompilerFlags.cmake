# One interface target carries what every target of this project compiles with.
add_library(folioweld_flags INTERFACE)
target_compile_options(folioweld_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion
                                                 -Wshadow $<$<BOOL:${FOLIOWELD_WERROR}>:-Werror>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 reports overlapping copies inside its own std::string where there are none (its bug 105651).
  # Where it merges much into one function it also takes the end of a vector for another pointer than its beginning.
  target_compile_options(folioweld_flags INTERFACE -Wno-restrict -Wno-free-nonheap-object)
endif()
target_include_directories(folioweld_flags INTERFACE ${PROJECT_SOURCE_DIR})

if(FOLIOWELD_DEBIAN_PACKAGES)
  # Where a package was built says nothing to those who use it, and would make every build another one.
  target_compile_options(folioweld_flags INTERFACE -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
                                                   -ffile-prefix-map=${PROJECT_BINARY_DIR}=.)
endif()

if(FOLIOWELD_SANITIZE)
  target_compile_options(folioweld_flags INTERFACE -fsanitize=${FOLIOWELD_SANITIZE}
                                                   -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(folioweld_flags INTERFACE -fsanitize=${FOLIOWELD_SANITIZE})
endif()

if(FOLIOWELD_COVERAGE)
  target_compile_options(folioweld_flags INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(folioweld_flags INTERFACE --coverage)
endif()
