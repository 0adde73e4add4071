# A folder is a layer: a library that sees only its own headers and those of the layers that it is built on.
#
#   layer(kbImport FILES obj.cpp ply.cpp ON kbModel kbTools)
#
# The compiler finds each layer through a folder in the build tree that has nothing but a link to it. An #include of a layer
# that is not linked therefore does not compile.

set(kbWarnings -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND KESTRELBOX_SANITIZE)
    list(APPEND kbWarnings -Wno-maybe-uninitialized) # false alarms of GCC in the sanitized standard library
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    list(APPEND kbWarnings -Wno-restrict) # a false alarm of GCC 12 about strings appended to literals
endif()

function(offer_headers target scope)
    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
    string(REPLACE "/" "_" name ${folder})
    set(link ${PROJECT_BINARY_DIR}/include/${name}/${folder})
    get_filename_component(parent ${link} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${link} SYMBOLIC)
    target_include_directories(${target} ${scope} ${PROJECT_BINARY_DIR}/include/${name})
endfunction()

function(layer target)
    cmake_parse_arguments(ARG "" "" "FILES;ON" ${ARGN})
    if(ARG_FILES)
        add_library(${target} STATIC ${ARG_FILES})
        target_compile_options(${target} PRIVATE ${kbWarnings})
        offer_headers(${target} PUBLIC)
        target_link_libraries(${target} PUBLIC ${ARG_ON})
    else()
        add_library(${target} INTERFACE)
        offer_headers(${target} INTERFACE)
        target_link_libraries(${target} INTERFACE ${ARG_ON})
    endif()
endfunction()

# One implementation of a part of the seam, as objects: a program links exactly those that it names.
function(implementation target)
    add_library(${target} OBJECT ${ARGN})
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${kbWarnings}>)
    target_link_libraries(${target} PUBLIC kbPlatform)
endfunction()
