# What every target is compiled with: tarvik_options carries language, warnings and sanitizers.

option(TARVIK_BUILD_TESTS "Build the tests" ON)
option(TARVIK_BUILD_BENCH "Build the benchmarks" ${TARVIK_BUILD_TESTS})
option(TARVIK_WERROR "Treat warnings as errors" OFF)
option(TARVIK_FUZZ "Build nothing but imagelib and its fuzzers; needs clang" OFF)
set(TARVIK_SANITIZE "" CACHE STRING "Sanitizers, as in -fsanitize=, or empty")

# Assertions are part of the product: no build type may define NDEBUG.
set(CMAKE_CXX_FLAGS_RELEASE "-O2")
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1")

find_program(TARVIK_CCACHE ccache)
if(TARVIK_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
        CCACHE_SLOPPINESS=pch_defines,time_macros ${TARVIK_CCACHE})
endif()

add_library(tarvik_options INTERFACE)
target_compile_features(tarvik_options INTERFACE cxx_std_20)
target_compile_options(tarvik_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wcast-align -Wunused -Wformat=2
    $<$<BOOL:${TARVIK_WERROR}>:-Werror>)
if(TARVIK_SANITIZE)
    # -O1: with -O2 the many instantiations of the analysis take hours to build under these checks.
    target_compile_options(tarvik_options INTERFACE -O1
        -fsanitize=${TARVIK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(tarvik_options INTERFACE -fsanitize=${TARVIK_SANITIZE})
endif()
