# What every target of the project is compiled with, and the one way to declare a module.

# Warnings are errors for the compiler of the releases; another one's opinions do not stop a build, nor what this one sees
# in the code that the sanitizers insert.
set(ORVEX_WARNINGS -Wall -Wextra -Wconversion -Wsign-conversion -Wold-style-cast -Wshadow)
if(NOT ORVEX_SANITIZE)
    list(APPEND ORVEX_WARNINGS $<$<CXX_COMPILER_ID:GNU>:-Werror>)
endif()

add_library(OrvexOptions INTERFACE)
target_compile_options(OrvexOptions INTERFACE ${ORVEX_WARNINGS})
target_compile_definitions(OrvexOptions INTERFACE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_FOREACH
    QT_NO_CAST_TO_ASCII $<$<CONFIG:Release>:QT_NO_DEBUG_OUTPUT>)
if(ORVEX_SANITIZE)
    # What the sanitizers insert makes the compiler see uninitialized optionals; it judges the plain build. The tests'
    # own code is not asked for undefined behaviour: that would double the time to compile it.
    target_compile_options(OrvexOptions INTERFACE
        -fsanitize=address$<$<NOT:$<BOOL:$<TARGET_PROPERTY:ORVEX_IS_TEST>>>:,undefined> -fno-sanitize-recover=all
        -fno-omit-frame-pointer $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(OrvexOptions INTERFACE -fsanitize=address,undefined)
endif()
if(ORVEX_FUZZ)
    target_compile_options(OrvexOptions INTERFACE -fsanitize=fuzzer-no-link,address,undefined
        -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(OrvexOptions INTERFACE -fsanitize=address,undefined)
endif()
if(ORVEX_COVERAGE)
    target_compile_options(OrvexOptions INTERFACE --coverage)
    target_link_options(OrvexOptions INTERFACE --coverage)
endif()

# With these, ccache keeps objects that are compiled with a precompiled header.
target_compile_options(OrvexOptions INTERFACE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>
    "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")

# orvex_module(NAME PUBLIC <targets> PRIVATE <targets>): one static library of all sources below the current folder.
# Its own folder is its only public include root, so a file can include what its target links and nothing else.
function(orvex_module NAME)
    cmake_parse_arguments(MODULE "" "" "PUBLIC;PRIVATE" ${ARGN})
    file(GLOB_RECURSE SOURCES CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
    add_library(${NAME} STATIC ${SOURCES})
    target_include_directories(${NAME} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
    target_link_libraries(${NAME} PUBLIC ${MODULE_PUBLIC} PRIVATE OrvexOptions ${MODULE_PRIVATE})
    target_precompile_headers(${NAME} PRIVATE "${PROJECT_SOURCE_DIR}/cmake/Precompiled.h")
endfunction()
