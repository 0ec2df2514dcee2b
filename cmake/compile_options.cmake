# What every file of the house is compiled with. Audio must come out the same bit for bit whatever compiles it:
# no contraction into fused operations, no fast-math.
add_library(quillon_compile_options INTERFACE)
target_compile_features(quillon_compile_options INTERFACE cxx_std_20)
target_compile_options(quillon_compile_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -ffp-contract=off -fno-fast-math -fvisibility=hidden
  -fvisibility-inlines-hidden)
if(QUILLON_WARNINGS_AS_ERRORS)
  target_compile_options(quillon_compile_options INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(quillon_compile_options INTERFACE -fno-gnu-unique)
endif()
if(WIN32)
  # The oldest Windows that is aimed at is 8: its DirectComposition is what the toolkit draws its windows with.
  target_compile_definitions(quillon_compile_options INTERFACE _WIN32_WINNT=0x0602 WINVER=0x0602 NOMINMAX)
  # Everything comes along: no compiler's library to be installed beside a plug-in.
  target_link_options(quillon_compile_options INTERFACE
    -static LINKER:--major-subsystem-version=6,--minor-subsystem-version=2,--no-insert-timestamp)
  # On this system the compiler does not align the stack for vectors wider than 16 bytes, yet stores them there with
  # moves that want it: the assembler is told to write the moves that do not.
  target_compile_options(quillon_compile_options INTERFACE -Wa,-muse-unaligned-vector-move)
  # The same bytes wherever it is built.
  target_compile_options(quillon_compile_options INTERFACE
    -ffile-prefix-map=${CMAKE_BINARY_DIR}=build -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
else()
  # The same, with the true paths left to debuggers.
  target_compile_options(quillon_compile_options INTERFACE
    -fmacro-prefix-map=${CMAKE_BINARY_DIR}=build -fmacro-prefix-map=${PROJECT_SOURCE_DIR}=.)
endif()
if(QUILLON_SANITIZE)
  target_compile_options(quillon_compile_options INTERFACE
    -fsanitize=${QUILLON_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quillon_compile_options INTERFACE -fsanitize=${QUILLON_SANITIZE})
endif()

# Sources that read a command line are mostly the parser's templates, which take longer to optimise than the rest of a
# tool and run once. On Windows they are optimised all the same, since what is packed should be small.
function(quillon_command_line_sources)
  if(NOT WIN32)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -O0)
  endif()
endfunction()
