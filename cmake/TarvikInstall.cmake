# What `cmake --install` puts where, and which package of packaging/cpack.cmake takes it:
# viewer (programs and what a desktop needs), simulator (trial data and a trial detector), python,
# and documents (Markdown for developers, in no package).
include(GNUInstallDirs)

install(TARGETS tarvik tarvik-image RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT viewer)
install(TARGETS tarvik-demo-data tarvik-control-unit-simulator
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT simulator)
# Nobody starts it by hand: the viewer looks for it beside itself and in ../libexec/tarvik.
install(TARGETS tarvik-reader RUNTIME DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/tarvik COMPONENT viewer)

set(share ${PROJECT_SOURCE_DIR}/packaging/share)
install(FILES ${share}/tarvik.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT viewer)
install(FILES ${share}/tarvik.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT viewer)
install(FILES ${share}/tarvik-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME tarvik.xml COMPONENT viewer)
install(FILES ${PROJECT_SOURCE_DIR}/resources/icons/tarvik256.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps RENAME tarvik.svg COMPONENT viewer)
foreach(program tarvik tarvik-image)
    install(FILES ${share}/completion.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${program} COMPONENT viewer)
endforeach()
foreach(program tarvik-demo-data tarvik-control-unit-simulator)
    install(FILES ${share}/completion.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${program} COMPONENT simulator)
endforeach()

install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents)

# A manual page is what its program says for --help.
find_program(TARVIK_TOOLS_PYTHON NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH REQUIRED)
function(tarvik_manual_page program component purpose)
    set(made ${PROJECT_BINARY_DIR}/man/${program}.1.gz)
    add_custom_command(OUTPUT ${made}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/man
        COMMAND ${TARVIK_TOOLS_PYTHON} ${PROJECT_SOURCE_DIR}/tools/make-man.py
            $<TARGET_FILE:${program}> ${purpose} ${PROJECT_VERSION} ${made}
        DEPENDS ${program} ${PROJECT_SOURCE_DIR}/tools/make-man.py
        COMMENT "Making the manual page of ${program}" VERBATIM)
    add_custom_target(${program}_manual ALL DEPENDS ${made})
    install(FILES ${made} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
endfunction()
tarvik_manual_page(tarvik viewer "viewer and control station for X-ray detector images")
tarvik_manual_page(tarvik-image viewer "describes, converts and draws X-ray detector images")
tarvik_manual_page(tarvik-demo-data simulator "writes demo series of a turning crystal")
tarvik_manual_page(tarvik-control-unit-simulator simulator "a detector control unit without a detector")
