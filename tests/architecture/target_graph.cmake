# Writes every target of the project into target_graph.txt, in the order of add_subdirectory, with a line for each
# thing that is to be known of it:
#
#   target dsp STATIC_LIBRARY dsp              name, kind, folder
#   links parameters quillon_compile_options   what it links itself
#   passes parameters                          what those that link it see with it
#   includes /a/folder /another                where its own files look for headers
function(quillon_write_target_graph)
  set_property(GLOBAL PROPERTY QUILLON_TARGET_GRAPH "")
  quillon_add_targets_of(${PROJECT_SOURCE_DIR})
  get_property(graph GLOBAL PROPERTY QUILLON_TARGET_GRAPH)
  file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/target_graph.txt CONTENT "${graph}")
endfunction()

# The targets of a folder, and then those of the folders that it adds.
function(quillon_add_targets_of folder)
  get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target ${targets})
    quillon_add_target(${target})
  endforeach()
  get_property(subfolders DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
  foreach(subfolder ${subfolders})
    quillon_add_targets_of(${subfolder})
  endforeach()
endfunction()

function(quillon_add_target target)
  get_target_property(kind ${target} TYPE)
  if(kind STREQUAL "UTILITY")
    return()
  endif()
  get_target_property(folder ${target} SOURCE_DIR)
  cmake_path(RELATIVE_PATH folder BASE_DIRECTORY ${PROJECT_SOURCE_DIR})
  get_property(passed TARGET ${target} PROPERTY INTERFACE_LINK_LIBRARIES)
  # A private link is in this list too, for the linker alone.
  list(FILTER passed EXCLUDE REGEX "^\\$<LINK_ONLY:")
  if(kind STREQUAL "INTERFACE_LIBRARY")
    set(links ${passed})
    set(includes INTERFACE_INCLUDE_DIRECTORIES)
  else()
    get_property(links TARGET ${target} PROPERTY LINK_LIBRARIES)
    set(includes INCLUDE_DIRECTORIES)
  endif()
  string(JOIN " " links ${links})
  string(JOIN " " passed ${passed})
  string(CONCAT lines "target ${target} ${kind} ${folder}\n"
                      "links ${links}\n"
                      "passes ${passed}\n"
                      "includes $<JOIN:$<REMOVE_DUPLICATES:$<TARGET_PROPERTY:${target},${includes}>>, >\n")
  set_property(GLOBAL APPEND_STRING PROPERTY QUILLON_TARGET_GRAPH "${lines}")
endfunction()
