# Other people's libraries that more than one folder of the house uses, as targets under the same names on both systems:
# for the tools CLI11::CLI11, nlohmann_json::nlohmann_json, quillon_sndfile and quillon_ebur128, for the tests
# GTest::gtest and GTest::gtest_main, for the bench benchmark::benchmark. For the doors CLAP's headers, clap, and on Linux
# LV2's, PkgConfig::LV2.
#
# On Linux all of them are Debian's. For Windows there are no packages: what is headers alone is used from where Debian
# puts it, through a folder that shows nothing else of this machine; what has to be compiled is compiled here.

# quillon_headers(CLI11::CLI11 /usr/include/CLI libcli11-dev): a library of headers in that one folder.
function(quillon_headers target folder package)
  if(NOT EXISTS ${folder})
    quillon_missing(${folder} ${package})
  endif()
  get_filename_component(name ${folder} NAME)
  set(view ${CMAKE_BINARY_DIR}/headers/${name})
  file(MAKE_DIRECTORY ${view})
  file(CREATE_LINK ${folder} ${view}/${name} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${view})
endfunction()

# Of this package nothing but the headers of one format.
quillon_headers(clap /usr/share/dpf/distrho/src/clap dpf-source)

if(NOT WIN32)
  quillon_pkg_config(LV2 lv2)
  if(QUILLON_BUILD_TOOLS)
    quillon_find(CLI11 libcli11-dev)
    quillon_find(nlohmann_json nlohmann-json3-dev)
    quillon_pkg_config(SNDFILE sndfile)
    add_library(quillon_sndfile INTERFACE)
    target_link_libraries(quillon_sndfile INTERFACE PkgConfig::SNDFILE)
    quillon_pkg_config(EBUR128 libebur128)
    add_library(quillon_ebur128 INTERFACE)
    target_link_libraries(quillon_ebur128 INTERFACE PkgConfig::EBUR128)
  endif()
  if(BUILD_TESTING)
    quillon_find(GTest libgtest-dev)
  endif()
  if(QUILLON_BUILD_BENCH)
    quillon_find(benchmark libbenchmark-dev)
  endif()
  return()
endif()

if(QUILLON_BUILD_TOOLS)
  quillon_headers(CLI11::CLI11 /usr/include/CLI libcli11-dev)
  quillon_headers(nlohmann_json::nlohmann_json /usr/include/nlohmann nlohmann-json3-dev)
  include(${CMAKE_CURRENT_LIST_DIR}/sndfile.cmake)
  include(${CMAKE_CURRENT_LIST_DIR}/ebur128.cmake)
endif()
if(NOT BUILD_TESTING)
  return()
endif()

set(googletest /usr/src/googletest/googletest)
if(NOT EXISTS ${googletest})
  quillon_missing(${googletest} googletest)
endif()
add_library(googletest STATIC EXCLUDE_FROM_ALL ${googletest}/src/gtest-all.cc ${googletest}/src/gtest_main.cc)
target_include_directories(googletest SYSTEM PUBLIC ${googletest}/include PRIVATE ${googletest})
target_compile_features(googletest PUBLIC cxx_std_17)
target_compile_options(googletest PRIVATE -w -O0)
add_library(GTest::gtest ALIAS googletest)
add_library(GTest::gtest_main ALIAS googletest)
