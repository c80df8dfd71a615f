# Compiler settings shared by every target of the project.
#
# Results have to be the same bytes on every x86-64 machine, as far as the compiler decides: no
# contraction into fused multiply-adds, no fast-math, no -march beyond the baseline. The logarithm of
# the splines is the library's own for that reason; the C library's functions choose their code by
# the processor, and their results differ in the last bit now and then.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# In a larger project the type is that project's to choose.
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

# ccache, where it is installed, keeps what was compiled before.
find_program(TESSARIN_CCACHE ccache)
mark_as_advanced(TESSARIN_CCACHE)
if(TESSARIN_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${TESSARIN_CCACHE}")
endif()

set(TESSARIN_BATCH 8 CACHE STRING
    "Sources of a test program, or of the tool, compiled as one: 1 compiles each by itself, 0 all at once")

set(TESSARIN_QUICK_OPTIONS -O0)
if(CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE") # needs optimisation, and complains in every source
    list(APPEND TESSARIN_QUICK_OPTIONS -U_FORTIFY_SOURCE)
endif()

# Files of the library have names of their own that others have, too: only what is told below to be
# compiled in batches is written for it, whatever the caller or a larger project asks for.
set(CMAKE_UNITY_BUILD OFF)

# What is added to this directory from here on is built to be built quickly.
macro(tessarin_build_quickly)
    add_compile_options(${TESSARIN_QUICK_OPTIONS})
    if(NOT TESSARIN_BATCH EQUAL 1)
        set(CMAKE_UNITY_BUILD ON)
        set(CMAKE_UNITY_BUILD_BATCH_SIZE ${TESSARIN_BATCH})
    endif()
endmacro()

# To the compiler, the sources of a batch are headers of one file, and what one names may hide what
# another does: two warnings are left to builds without batches.
set(TESSARIN_IN_BATCHES $<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>)
add_library(tessarin_settings INTERFACE)
target_compile_options(tessarin_settings INTERFACE
    -ffp-contract=off
    -fno-tree-slp-vectorize # GCC 12 drops the rounding of two neighbouring doubles to float with it
    "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=" # the last one that matches is applied
    "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/src/="
    -Wall -Wextra -Wpedantic -Wconversion
    $<$<NOT:${TESSARIN_IN_BATCHES}>:-Wshadow>
    $<$<AND:${TESSARIN_IN_BATCHES},$<COMPILE_LANGUAGE:CXX>>:-Wno-subobject-linkage>
    $<$<BOOL:${TESSARIN_WARNINGS_AS_ERRORS}>:-Werror>)

if(TESSARIN_SANITIZE)
    target_compile_options(tessarin_settings INTERFACE
        -fsanitize=${TESSARIN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(tessarin_settings INTERFACE -fsanitize=${TESSARIN_SANITIZE})
    if(TESSARIN_SANITIZE MATCHES address)
        target_compile_definitions(tessarin_settings INTERFACE TESSARIN_WATCHES_MEMORY)
    endif()
    # What looks at every pointer that is followed takes half of the time to compile a test. The
    # library is compiled with it, the tests with all the rest.
    if(TESSARIN_SANITIZE MATCHES undefined)
        target_compile_options(tessarin_settings INTERFACE
            $<${TESSARIN_IN_BATCHES}:-fno-sanitize=vptr,null,alignment,object-size>)
    endif()
endif()
if(TESSARIN_BUILD_FUZZERS) # the fuzzer sees what is instrumented, and nothing else
    target_compile_options(tessarin_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(TESSARIN_COVERAGE)
    target_compile_options(tessarin_settings INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(tessarin_settings INTERFACE --coverage)
endif()
