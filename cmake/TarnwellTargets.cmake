# SPDX-License-Identifier: MIT
# Compile options and target functions that all folders use.

# The build tree has the layout of an installed tree, so that the program finds its files in the same way in both.
set(TARNWELL_BINARY_FOLDER "${CMAKE_BINARY_DIR}/bin")
set(TARNWELL_TOOL_FOLDER "${CMAKE_BINARY_DIR}/libexec/tarnwell")
set(TARNWELL_PICTURE_FOLDER "${CMAKE_BINARY_DIR}/share/tarnwell")

function(tarnwell_compile_options target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII
        QT_NO_CAST_FROM_BYTEARRAY
        QT_NO_CAST_TO_ASCII
        QT_NO_KEYWORDS
        QT_NO_URL_CAST_FROM_STRING
    )
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
        -Wold-style-cast -Woverloaded-virtual -Wsuggest-override
        $<$<BOOL:${TARNWELL_WARNINGS_AS_ERRORS}>:-Werror>
    )
endfunction()

# tarnwell_library(NAME SOURCES … [LINKS …] [QT …] [PRIVATE_LINKS …]): the static library of one folder. Libraries in
# LINKS are passed on to targets that link this one. Qt modules in QT are private, so a folder without QT cannot include
# Qt headers.
function(tarnwell_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINKS;QT;PRIVATE_LINKS")
    add_library(${name} STATIC ${arg_SOURCES})
    tarnwell_compile_options(${name})
    target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE ${arg_QT} ${arg_PRIVATE_LINKS})
endfunction()
