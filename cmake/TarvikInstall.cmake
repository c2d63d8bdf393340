# What `cmake --install` puts where: programs, the desktop's files and the documents for users.
include(GNUInstallDirs)

install(TARGETS tarvik tarvik-image tarvik-demo-data tarvik-control-unit-simulator RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# Nobody starts it by hand: the viewer looks for it beside itself and in ../libexec/tarvik.
install(TARGETS tarvik-reader RUNTIME DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/tarvik)

install(FILES ${PROJECT_SOURCE_DIR}/packaging/share/tarvik.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/share/tarvik-mime.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME tarvik.xml)
install(FILES ${PROJECT_SOURCE_DIR}/resources/icons/tarvik256.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps RENAME tarvik.svg)

install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR})
