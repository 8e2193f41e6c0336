# cmake -D PAGE=FILE -D OUTPUT=FILE [-D PICTURES=ON] [-D OTHERS=FOLDER] -P installed_page.cmake: a page of the documents as it
# is installed. Links lead to what is installed too, and others become plain words. Pictures stay with PICTURES only; the
# other pages lie in OTHERS, seen from this one, or beside it.
file(READ ${PAGE} page)
string(REGEX REPLACE "\\]\\(docs/" "](" page "${page}")
string(REGEX REPLACE "\\[([^]]*)\\]\\((ARCHITECTURE\\.md|CHANGELOG\\.md|CONTRIBUTING\\.md|LICENSE|performance\\.md)\\)" "\\1"
       page "${page}")
if(NOT PICTURES)
  string(REGEX REPLACE "\n *!\\[[^]]*\\]\\([^)]*\\)\n" "\n" page "${page}")
  string(REGEX REPLACE "\n\n\n+" "\n\n" page "${page}")
endif()
if(OTHERS)
  string(REGEX REPLACE "\\]\\(([A-Za-z-]+\\.md)" "](${OTHERS}/\\1" page "${page}")
endif()
file(WRITE ${OUTPUT} "${page}")
