# A room is one CMake target whose headers can be seen only by the rooms that link it. Its headers are reached as
# "folder/header.h" through a folder of links made for this target alone, so an include that the house does not
# allow does not compile.
#
#   quillon_room(dsp FOLDER dsp HEADERS module_delay.h SOURCES module_delay.cpp LINKS vst2)
function(quillon_room target)
  cmake_parse_arguments(ROOM "" "FOLDER" "HEADERS;SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  set(view ${CMAKE_BINARY_DIR}/rooms/${target})
  # A header that has left the room must not stay to be seen.
  file(REMOVE_RECURSE ${view})
  foreach(header ${ROOM_HEADERS})
    get_filename_component(subfolder ${ROOM_FOLDER}/${header} DIRECTORY)
    file(MAKE_DIRECTORY ${view}/${subfolder})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${ROOM_FOLDER}/${header} ${view}/${ROOM_FOLDER}/${header} SYMBOLIC)
  endforeach()
  if(ROOM_SOURCES)
    list(TRANSFORM ROOM_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/${ROOM_FOLDER}/)
    add_library(${target} STATIC ${ROOM_SOURCES})
    target_include_directories(${target} PUBLIC ${view})
    target_link_libraries(${target} PUBLIC ${ROOM_LINKS} PRIVATE ${ROOM_PRIVATE_LINKS} quillon_compile_options)
  else()
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE ${view})
    target_link_libraries(${target} INTERFACE ${ROOM_LINKS})
  endif()
endfunction()
