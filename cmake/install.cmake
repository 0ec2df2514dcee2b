# What `cmake --install` puts where, below its prefix, in the components vst2, lv2, clap, tools and doc. On Windows there is
# an installer instead.
set(QUILLON_VST2_FOLDER lib/vst CACHE STRING "Where VST hosts look, below the prefix")
set(QUILLON_LV2_FOLDER lib/lv2 CACHE STRING "Where LV2 hosts look, below the prefix")
set(QUILLON_CLAP_FOLDER lib/clap CACHE STRING "Where CLAP hosts look, below the prefix")
set(QUILLON_VST2_PLACE ${QUILLON_VST2_FOLDER}/${QUILLON_LIBRARY_NAME})
set(QUILLON_LV2_PLACE ${QUILLON_LV2_FOLDER}/${QUILLON_LIBRARY_NAME}.lv2)
set(QUILLON_CLAP_PLACE ${QUILLON_CLAP_FOLDER}/${QUILLON_LIBRARY_NAME})

# quillon_install(ARGUMENT...): as install(), on systems where there is something to install to.
function(quillon_install)
  if(NOT WIN32)
    install(${ARGN})
  endif()
endfunction()
