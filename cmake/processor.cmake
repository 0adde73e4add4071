# Which processor the programs are for, by whose name the folders of fast kernels are chosen:
#
#   kbProcessor   x86, or other: no fast kernels of its own
#
# Files and tables are read as they stand in memory, so numbers have to begin with their lowest byte.
if(CMAKE_CXX_BYTE_ORDER STREQUAL "BIG_ENDIAN")
    message(FATAL_ERROR "Kestrelbox runs on little-endian processors only, and ${CMAKE_SYSTEM_PROCESSOR} is big-endian.")
endif()

set(kbProcessor other)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64|x86|i[3-6]86)$")
    set(kbProcessor x86)
endif()

# kernels(OUT PROCESSOR FILE...) adds the files of the folder that is named for the processor to the list OUT.
function(kernels out processor)
    if(kbProcessor STREQUAL processor)
        list(TRANSFORM ARGN PREPEND ${processor}/)
        set(${out} ${${out}} ${ARGN} PARENT_SCOPE)
    endif()
endfunction()
