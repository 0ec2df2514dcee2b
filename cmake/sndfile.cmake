# libsndfile 1.2.2 for Windows as the target quillon_sndfile: fetched once for all builds of this person, compiled with the
# formats of its own (WAV, AIFF, CAF, Wave64 and many more), without the codecs of others (FLAC, Ogg, MP3).
#
# With its sources at hand: -DSNDFILE_SOURCE_DIR=FOLDER.
set(SNDFILE_SOURCE_DIR "" CACHE PATH "The sources of libsndfile 1.2.2; empty to fetch them")

include(${CMAKE_CURRENT_LIST_DIR}/fetch_source.cmake)
quillon_fetch_source(sndfile sndfile "${SNDFILE_SOURCE_DIR}")

# Its own template, filled with what is known of this one compiler and system: asking takes longer than compiling.
function(sndfile_configure)
  foreach(answer
      COMPILER_IS_GCC CPU_IS_LITTLE_ENDIAN HAVE_CALLOC HAVE_CEIL HAVE_DIRECT_H HAVE_FLOOR HAVE_FMOD HAVE_FREE HAVE_FSTAT
      HAVE_FSTAT64 HAVE_FTRUNCATE HAVE_GETTIMEOFDAY HAVE_GMTIME HAVE_IMMINTRIN_H HAVE_INTTYPES_H HAVE_IO_H HAVE_LOCALE_H
      HAVE_LOCALTIME HAVE_LRINT HAVE_LRINTF HAVE_LROUND HAVE_LSEEK HAVE_LSEEK64 HAVE_MALLOC HAVE_MEMORY_H HAVE_OPEN
      HAVE_READ HAVE_REALLOC HAVE_SETLOCALE HAVE_SNPRINTF HAVE_SSIZE_T HAVE_STDBOOL_H HAVE_STDINT_H HAVE_STDLIB_H
      HAVE_STRING_H HAVE_STRINGS_H HAVE_SYS_STAT_H HAVE_SYS_TIME_H HAVE_SYS_TYPES_H HAVE_UNISTD_H HAVE_VSNPRINTF HAVE_WRITE
      OS_IS_WIN32 USE_WINDOWS_API)
    set(${answer} 1)
  endforeach()
  foreach(answer CPU_IS_BIG_ENDIAN CPU_CLIPS_NEGATIVE CPU_CLIPS_POSITIVE OSX_DARWIN_VERSION WORDS_BIGENDIAN)
    set(${answer} 0)
  endforeach()
  foreach(size DOUBLE=8 FLOAT=4 INT=4 INT64_T=8 LONG=4 LONG_LONG=8 OFF64_T=8 OFF_T=8 SHORT=2 SIZE_T=8 SSIZE_T=8 VOIDP=8
               WCHAR_T=2)
    string(REPLACE "=" ";" size ${size})
    list(GET size 0 type)
    list(GET size 1 bytes)
    set(SIZEOF_${type}_CODE "#define SIZEOF_${type} ${bytes}")
  endforeach()
  set(PACKAGE_NAME libsndfile)
  set(CPACK_PACKAGE_VERSION_FULL 1.2.2)
  set(PROJECT_VERSION 1.2.2)
  configure_file(${sndfile}/src/config.h.cmake ${CMAKE_BINARY_DIR}/sndfile/config.h)
endfunction()
sndfile_configure()

file(GLOB sndfile_sources ${sndfile}/src/*.c ${sndfile}/src/GSM610/*.c ${sndfile}/src/G72x/*.c ${sndfile}/src/ALAC/*.c)
list(FILTER sndfile_sources EXCLUDE REGEX "/test_[a-z_]*\\.c$")
add_library(quillon_sndfile STATIC EXCLUDE_FROM_ALL ${sndfile_sources})
target_include_directories(
  quillon_sndfile SYSTEM PUBLIC ${sndfile}/include PRIVATE ${sndfile}/src ${CMAKE_BINARY_DIR}/sndfile)
target_compile_definitions(quillon_sndfile PRIVATE _FILE_OFFSET_BITS=64)
target_compile_options(quillon_sndfile PRIVATE -w -O1)
