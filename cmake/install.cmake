# cmake --install copies the programs and all that belongs to them to where Linux looks for it. cpack makes two Debian packages
# of the same files: kbx, and kestrelbox where Qt is there.
include(GNUInstallDirs)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME kbx)

# Debian wants manual pages and changes compressed, without the time of the compression.
function(compressed from to)
    add_custom_command(OUTPUT ${to} COMMAND sh -c "gzip -9n <'${from}' >'${to}'" DEPENDS ${from} VERBATIM)
endfunction()
set(share ${PROJECT_BINARY_DIR}/share)
compressed(${share}/kbx.1 ${share}/kbx.1.gz)
compressed(${share}/kestrelbox.1 ${share}/kestrelbox.1.gz)
compressed(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${share}/changelog.gz)
compressed(${PROJECT_SOURCE_DIR}/resources/linux/changelog ${share}/changelog.Debian.gz)
add_custom_target(compressed_documents ALL DEPENDS ${share}/kbx.1.gz ${share}/kestrelbox.1.gz ${share}/changelog.gz ${share}/changelog.Debian.gz manual)

# The documents of a package: licence and changes.
function(install_documents component)
    set(folder ${CMAKE_INSTALL_DATADIR}/doc/${component})
    install(FILES LICENSE DESTINATION ${folder} RENAME copyright COMPONENT ${component})
    install(FILES ${share}/changelog.gz ${share}/changelog.Debian.gz DESTINATION ${folder} COMPONENT ${component})
endfunction()

install(TARGETS kbx)
install(FILES ${share}/kbx.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${share}/kbx.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME kbx)
install(FILES ${share}/_kbx DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
install(FILES ${share}/kbx.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
install(FILES resources/linux/kbx.overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME kbx)
install(FILES resources/linux/kestrelbox.thumbnailer DESTINATION ${CMAKE_INSTALL_DATADIR}/thumbnailers)
install_documents(kbx)

if(TARGET kestrelbox)
    install(TARGETS kestrelbox COMPONENT kestrelbox)
    install(FILES ${share}/kestrelbox.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT kestrelbox)
    install(FILES resources/linux/kestrelbox.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT kestrelbox)
    install(FILES resources/linux/kestrelbox.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages COMPONENT kestrelbox)
    install(FILES resources/linux/kestrelbox.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT kestrelbox)
    install(FILES resources/kestrelbox.png DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/256x256/apps COMPONENT kestrelbox)
    foreach(side 16 32 48 128)
        install(FILES resources/kestrelbox-${side}.png DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${side}x${side}/apps RENAME kestrelbox.png COMPONENT kestrelbox)
    endforeach()
    install(FILES resources/linux/kestrelbox.overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME kestrelbox COMPONENT kestrelbox)
    install_documents(kestrelbox)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL kbx)
if(TARGET kestrelbox)
    list(APPEND CPACK_COMPONENTS_ALL kestrelbox)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGE_CONTACT "Kestrelbox maintainers <maintainers@kestrelbox.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
if(CMAKE_CROSSCOMPILING) # the machine that builds has no package list of the other processor; kbx is linked statically
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
else()
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()
set(CPACK_DEBIAN_KBX_PACKAGE_NAME kbx)
set(CPACK_DEBIAN_KBX_DESCRIPTION "inspect, repair, convert and render 3D polygon models
kbx reads OBJ, 3DS, DXF, PLY, OFF, STL, Poser and RKF models, repairs them, writes
OBJ, Poser, RKF and LuxRender files, and draws them with its own renderer.")
set(CPACK_DEBIAN_KESTRELBOX_PACKAGE_NAME kestrelbox)
set(CPACK_DEBIAN_KESTRELBOX_DESCRIPTION "look at 3D polygon models, repair and convert them
Kestrelbox shows OBJ, 3DS, DXF, PLY, OFF, STL, Poser and RKF models in a window.
It draws with its own renderer, which needs no graphics card, repairs models,
and writes OBJ, Poser, RKF and LuxRender files and pictures.")
include(CPack)
