# The example documents are what their script writes, and an independent reader finds no fault in them.
add_test(NAME examples_are_current COMMAND python3 ${PROJECT_SOURCE_DIR}/examples/make-examples.py --check)

file(GLOB EXAMPLES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/*.pdf)
foreach(EXAMPLE ${EXAMPLES})
  cmake_path(GET EXAMPLE STEM NAME)
  add_test(NAME example_is_valid.${NAME} COMMAND qpdf --check ${EXAMPLE})
endforeach()
