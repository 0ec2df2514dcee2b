# quillon_fetch_source(NAME VARIABLE FOLDER): leaves the folder with the sources of somebody else's library, as
# fetch_source.sh knows it by NAME, in VARIABLE. It is FOLDER, if that is not empty; else they are fetched, once for all
# builds of this person.
function(quillon_fetch_source name variable folder)
  if(NOT folder)
    execute_process(
      COMMAND ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/fetch_source.sh ${name}
      OUTPUT_VARIABLE folder OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
      message(FATAL_ERROR "The sources of ${name} could not be had; the lines above say why.")
    endif()
  endif()
  set(${variable} ${folder} PARENT_SCOPE)
endfunction()
