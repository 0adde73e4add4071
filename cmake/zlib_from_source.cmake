# zlib where Debian has no library of it: the target "zlib" from the sources inside the package binutils-source.
enable_language(C)
set(zlibFolder ${PROJECT_BINARY_DIR}/zlib)
if(NOT EXISTS ${zlibFolder}/zlib.h)
    file(GLOB zlibArchive /usr/src/binutils/binutils-*.tar.xz)
    if(NOT zlibArchive)
        message(FATAL_ERROR "The sources of zlib are not installed (package binutils-source)")
    endif()
    file(MAKE_DIRECTORY ${zlibFolder})
    execute_process(
        COMMAND tar -xJf ${zlibArchive} -C ${zlibFolder} --strip-components=2 --wildcards "*/zlib/*.c" "*/zlib/*.h"
        COMMAND_ERROR_IS_FATAL ANY)
endif()
foreach(file adler32 crc32 deflate trees zutil)
    list(APPEND zlibFiles ${zlibFolder}/${file}.c)
endforeach()
add_library(zlib STATIC ${zlibFiles})
target_include_directories(zlib SYSTEM PUBLIC ${zlibFolder})
set(zlib zlib)
