# SPDX-License-Identifier: LGPL-2.1-or-later
# Compiler settings that hold for every target of the tree.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

add_compile_options(-Wall -Wextra -Wpedantic -Werror)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # Qt's logging macros; g++ does not mind.
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wno-gnu-zero-variadic-macro-arguments>)
endif()
add_compile_definitions(QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_MESSAGELOGCONTEXT
    # The bearer classes are deprecated as a whole in Qt 5.15; nothing replaces them in Qt 5.
    QT_NO_DEPRECATED_WARNINGS)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

# fennel_precompile(TARGET HEADER...): headers of Qt and of the standard library that nearly every file of the
# target reads. Nothing of the tree's own belongs here: files name what they use.
function(fennel_precompile target)
    list(TRANSFORM ARGN REPLACE "(.+)" "<\\1>")
    target_precompile_headers(${target} PRIVATE ${ARGN} <functional> <memory> <vector>)
endfunction()

set(FENNEL_SANITIZE "" CACHE STRING "Sanitizers, as in -fsanitize=, for example address,undefined")
if(FENNEL_SANITIZE)
    add_compile_options(-fsanitize=${FENNEL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=${FENNEL_SANITIZE})
endif()
