# Other people's libraries that more than one folder of the house uses, as targets under the same names on both systems:
# CLI11::CLI11, nlohmann_json::nlohmann_json, GTest::gtest, GTest::gtest_main and quillon_sndfile.
#
# On Linux all of them are Debian's. For Windows there are no packages: what is headers alone is used from where Debian
# puts it, through a folder that shows nothing else of this machine; what has to be compiled is compiled here.
if(NOT WIN32)
  find_package(PkgConfig REQUIRED)
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
  find_package(GTest REQUIRED)
  pkg_check_modules(SNDFILE REQUIRED IMPORTED_TARGET sndfile)
  add_library(quillon_sndfile INTERFACE)
  target_link_libraries(quillon_sndfile INTERFACE PkgConfig::SNDFILE)
  return()
endif()

# quillon_headers(CLI11::CLI11 /usr/include/CLI): a library of headers in that one folder.
function(quillon_headers target folder)
  if(NOT EXISTS ${folder})
    message(FATAL_ERROR "${folder} is missing: `./quillon windows` installs what the Windows build needs.")
  endif()
  get_filename_component(name ${folder} NAME)
  set(view ${CMAKE_BINARY_DIR}/headers/${name})
  file(MAKE_DIRECTORY ${view})
  file(CREATE_LINK ${folder} ${view}/${name} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${view})
endfunction()

quillon_headers(CLI11::CLI11 /usr/include/CLI)
quillon_headers(nlohmann_json::nlohmann_json /usr/include/nlohmann)

set(googletest /usr/src/googletest/googletest)
if(NOT EXISTS ${googletest})
  message(FATAL_ERROR "${googletest} is missing: `./quillon windows` installs what the Windows build needs.")
endif()
add_library(googletest STATIC EXCLUDE_FROM_ALL ${googletest}/src/gtest-all.cc ${googletest}/src/gtest_main.cc)
target_include_directories(googletest SYSTEM PUBLIC ${googletest}/include PRIVATE ${googletest})
target_compile_features(googletest PUBLIC cxx_std_17)
target_compile_options(googletest PRIVATE -w -O0)
add_library(GTest::gtest ALIAS googletest)
add_library(GTest::gtest_main ALIAS googletest)

include(${CMAKE_CURRENT_LIST_DIR}/sndfile.cmake)
