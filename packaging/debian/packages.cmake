# The three Debian packages, built by CPack: see scripts/package.sh.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME folioweld)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The Folioweld developers <maintainers@folioweld.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# The desktop entry is written with the final prefix: it is installed into a staging folder, not under another prefix.
set(CPACK_SET_DESTDIR ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL command window extras)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# They are compressed at the end, side by side.
set(CPACK_DEBIAN_COMPRESSION_TYPE none)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://folioweld.example/)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The programs are stripped, and what that takes away is in packages of its own.
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)

set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME folioweld)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION text)
# The other programs are those that the documents name.
set(CPACK_DEBIAN_COMMAND_PACKAGE_SUGGESTS
    "folioweld-window, folioweld-extras, mupdf-tools, pdftk-java, poppler-utils, qpdf")
set(CPACK_DEBIAN_COMMAND_DESCRIPTION "joins PDF documents into one file\n\
Joins every PDF document of a folder into one file, from the command line and\n\
without a screen. Page contents, fonts and pictures are copied byte for byte\n\
and never decoded, so a page comes out as it went in.\n\
\n\
The window that joins documents with the mouse is in folioweld-window; what\n\
makes documents joinable that are not, such as those with compressed tables,\n\
is in folioweld-extras.")

set(CPACK_DEBIAN_WINDOW_PACKAGE_NAME folioweld-window)
set(CPACK_DEBIAN_WINDOW_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_WINDOW_PACKAGE_DEPENDS "folioweld (= ${PROJECT_VERSION})")
# Qt's way to a Wayland screen is a plugin, which no program is linked with; that to X11 comes with Qt.
set(CPACK_DEBIAN_WINDOW_PACKAGE_RECOMMENDS qt6-wayland)
set(CPACK_DEBIAN_WINDOW_PACKAGE_SUGGESTS folioweld-extras)
set(CPACK_DEBIAN_WINDOW_DESCRIPTION "joins PDF documents into one file - window\n\
Joins two PDF documents, or every document of a folder, into one file. They\n\
are chosen in the window or dragged there, and the output is opened in the PDF\n\
viewer of the desktop. Page contents, fonts and pictures are copied byte for\n\
byte and never decoded, so a page comes out as it went in.")

set(CPACK_DEBIAN_EXTRAS_PACKAGE_NAME folioweld-extras)
set(CPACK_DEBIAN_EXTRAS_PACKAGE_SECTION text)
set(CPACK_DEBIAN_EXTRAS_PACKAGE_DEPENDS "folioweld (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_EXTRAS_DESCRIPTION "joins PDF documents into one file - any PDF\n\
Writes PDF documents in the form that folioweld joins: those with compressed\n\
tables or object streams, changed in place, protected without a password, and\n\
others that it does not read. Every stream keeps its bytes.\n\
\n\
The option --prepare of folioweld has that done for the documents that need\n\
it, and so has the window when it is opened as Folioweld (any PDF).\n\
\n\
The option --carry keeps the outlines, forms and names of all documents, and\n\
not only those of the first.")

find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(maker ${CMAKE_CURRENT_SOURCE_DIR}/debian/changelog.py)
set(source ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
set(changelog ${CMAKE_CURRENT_BINARY_DIR}/changelog)
add_custom_command(OUTPUT ${changelog} COMMAND Python3::Interpreter ${maker} ${source} > ${changelog}
                   DEPENDS ${maker} ${source} VERBATIM)
folioweld_compress(${changelog}.gz ${changelog})
add_custom_target(debian_changelog ALL DEPENDS ${changelog}.gz)
install(FILES ${changelog}.gz debian/copyright DESTINATION ${FOLIOWELD_DOC_DIR} COMPONENT command)
install(FILES ${changelog}.gz debian/copyright DESTINATION ${FOLIOWELD_WINDOW_DOC_DIR} COMPONENT window)
install(FILES ${changelog}.gz debian/copyright DESTINATION ${FOLIOWELD_EXTRAS_DOC_DIR} COMPONENT extras)

include(CPack)
