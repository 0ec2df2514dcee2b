# Makes a page for browsers from the skin author's guide. Its links and pictures stay relative to it.
#
#   cmake -DCMARK=cmark-gfm -DGUIDE=docs/skins.md -DFRAME=page.html -DOUTPUT=... -P make_guide_page.cmake
execute_process(
  COMMAND ${CMARK} --extension table ${GUIDE}
  OUTPUT_VARIABLE guide
  COMMAND_ERROR_IS_FATAL ANY)

# The anchors that links within the guide go to.
string(REGEX MATCHALL "<h[1-6]>[^<;]*</h[1-6]>" headings "${guide}")
foreach(heading IN LISTS headings)
  string(REGEX REPLACE "<h([1-6])>(.*)</h[1-6]>" "\\1" level "${heading}")
  string(REGEX REPLACE "<h([1-6])>(.*)</h[1-6]>" "\\2" text "${heading}")
  string(TOLOWER "${text}" anchor)
  string(REGEX REPLACE "[^a-z0-9 -]" "" anchor "${anchor}")
  string(REPLACE " " "-" anchor "${anchor}")
  string(REPLACE "${heading}" "<h${level} id=\"${anchor}\">${text}</h${level}>" guide "${guide}")
endforeach()

file(READ ${FRAME} page)
string(REPLACE "{{guide}}" "${guide}" page "${page}")
file(WRITE ${OUTPUT} "${page}")
