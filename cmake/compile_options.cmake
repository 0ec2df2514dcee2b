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
if(QUILLON_SANITIZE)
  target_compile_options(quillon_compile_options INTERFACE
    -fsanitize=${QUILLON_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quillon_compile_options INTERFACE -fsanitize=${QUILLON_SANITIZE})
endif()
