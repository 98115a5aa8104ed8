# The installed program: its folder under lib/velmora (executable, template, help), a launcher in
# bin, the desktop entry, the icons and the AppStream description. The catalogue is made by the
# program at its first start and is never installed, so an uninstall never removes it.
include(GNUInstallDirs)
set(INSTALL_PROGRAM_DIR lib/velmora)

install(TARGETS velmora RUNTIME DESTINATION ${INSTALL_PROGRAM_DIR})
install(FILES ${PROGRAM_DIR}/data.dll ${HELP_OUTPUTS} DESTINATION ${INSTALL_PROGRAM_DIR})

# A relative link, so that the program finds its folder wherever the prefix is.
set(LAUNCHER ${CMAKE_BINARY_DIR}/launcher/velmora)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/launcher)
file(CREATE_LINK ../lib/velmora/velmora ${LAUNCHER} SYMBOLIC)
install(FILES ${LAUNCHER} DESTINATION ${CMAKE_INSTALL_BINDIR})

install(FILES packaging/velmora.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/example.dorviksoftware.Velmora.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
foreach(icon_size 48 256)
    install(FILES assets/icons/app/${icon_size}/velmora.png
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${icon_size}x${icon_size}/apps)
endforeach()

# The copyright and the changelog, compressed the reproducible way, as Debian packages carry them.
set(PACKAGE_CHANGELOG ${CMAKE_BINARY_DIR}/packaging/changelog.gz)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/packaging)
execute_process(COMMAND gzip -9 -n -c ${CMAKE_SOURCE_DIR}/packaging/changelog
                OUTPUT_FILE ${PACKAGE_CHANGELOG})
set(MANUAL_PAGE ${CMAKE_BINARY_DIR}/packaging/velmora.1.gz)
execute_process(COMMAND gzip -9 -n -c ${CMAKE_SOURCE_DIR}/packaging/velmora.1
                OUTPUT_FILE ${MANUAL_PAGE})
install(FILES ${MANUAL_PAGE} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/copyright ${PACKAGE_CHANGELOG}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/velmora)

set(CPACK_PACKAGE_NAME velmora)
set(CPACK_PACKAGE_VENDOR "Dorvik Software")
set(CPACK_PACKAGE_CONTACT "Dorvik Software <velmora@dorviksoftware.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "catalogue for a personal collection of discs")
set(CPACK_PACKAGE_DESCRIPTION
    "Velmora files each disc of a collection (music, games, applications, video)
as a title under a platform and a type, with its tracks or a listing of its
files, browses the collection in a folder tree beside a title list and
searches it by any field.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES TRUE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins")
# WebP covers; JPEG, PNG and GIF come with Qt itself.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-image-formats-plugins")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "http://www.dorviksoftware.example/")
include(CPack)
