# What a host loads of a door: a library that shows nothing but what stands in exports.map (or exports.def, for Windows) in
# the door's folder, and that neither a host nor the system takes apart before its time.
#
#   quillon_module(quillon_lv2 ROOM lv2_door SUFFIX .so FOLDER ${QUILLON_LV2_BUNDLE} COMPONENT lv2 PLACE lib/lv2)
#
# `cmake --install` puts it into PLACE, as COMPONENT.
# With NAME for a module that is not called like the product.
if(WIN32)
  enable_language(RC)
endif()

function(quillon_module target)
  cmake_parse_arguments(MODULE "" "ROOM;NAME;SUFFIX;FOLDER;COMPONENT;PLACE" "" ${ARGN})
  if(NOT MODULE_NAME)
    set(MODULE_NAME ${QUILLON_LIBRARY_NAME})
  endif()
  add_library(${target} MODULE entry_point.cpp ${PROJECT_SOURCE_DIR}/platform/${QUILLON_SYSTEM}/process_end.cpp)
  target_link_libraries(${target} PRIVATE ${MODULE_ROOM} quillon_compile_options)
  if(WIN32)
    set(exports ${CMAKE_CURRENT_SOURCE_DIR}/exports.def)
    set(file ${MODULE_NAME}${MODULE_SUFFIX})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in version.rc @ONLY)
    target_sources(${target} PRIVATE ${exports} ${CMAKE_CURRENT_BINARY_DIR}/version.rc)
    # No destructor of a static object runs while the system takes the library or the process away.
    target_link_options(${target} PRIVATE LINKER:--wrap=atexit)
    # Names of functions that nobody else can call.
    target_link_options(${target} PRIVATE LINKER:--strip-all)
  else()
    set(exports ${CMAKE_CURRENT_SOURCE_DIR}/exports.map)
    # Once loaded it stays: what draws for it (pixman, fontconfig) keeps memory from its first moment on and would lose
    # it each time that a host unloads its last plug-in and loads it again.
    target_link_options(${target} PRIVATE -Wl,--version-script=${exports} -Wl,-z,nodelete)
    # No destructor of a static object runs before a host that closes the effect in one of its own.
    target_link_options(${target} PRIVATE -Wl,--wrap=__cxa_atexit)
    if(NOT QUILLON_SANITIZE)
      target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
  endif()
  set_target_properties(${target} PROPERTIES
    PREFIX "" SUFFIX ${MODULE_SUFFIX} OUTPUT_NAME ${MODULE_NAME} LIBRARY_OUTPUT_DIRECTORY ${MODULE_FOLDER}
    LINK_DEPENDS ${exports})
  add_dependencies(deliverable ${target})
  quillon_install(TARGETS ${target} DESTINATION ${MODULE_PLACE} COMPONENT ${MODULE_COMPONENT}
                  PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endfunction()
