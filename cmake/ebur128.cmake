# libebur128 1.2.6 for Windows as the target quillon_ebur128: fetched once for all builds of this person. It is one file,
# and brings the list macros that the system does not have.
#
# With its sources at hand: -DEBUR128_SOURCE_DIR=FOLDER.
set(EBUR128_SOURCE_DIR "" CACHE PATH "The sources of libebur128 1.2.6; empty to fetch them")

include(${CMAKE_CURRENT_LIST_DIR}/fetch_source.cmake)
quillon_fetch_source(ebur128 ebur128 "${EBUR128_SOURCE_DIR}")

add_library(quillon_ebur128 STATIC EXCLUDE_FROM_ALL ${ebur128}/ebur128/ebur128.c)
target_include_directories(
  quillon_ebur128 SYSTEM PUBLIC ${ebur128}/ebur128 PRIVATE ${ebur128}/ebur128/queue)
target_compile_options(quillon_ebur128 PRIVATE -w -O2)
