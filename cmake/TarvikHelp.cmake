# The pages behind the Documentation button, made from docs/ beside the programs, where they are
# looked for.
set(help ${PROJECT_BINARY_DIR}/Resources/tarvik_doc)
file(GLOB_RECURSE help_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.md ${PROJECT_SOURCE_DIR}/docs/images/*.png)
add_custom_command(OUTPUT ${help}/index.html
    COMMAND ${TARVIK_TOOLS_PYTHON} ${PROJECT_SOURCE_DIR}/tools/make-help.py ${PROJECT_SOURCE_DIR}/docs ${help}
    DEPENDS ${PROJECT_SOURCE_DIR}/tools/make-help.py ${help_sources}
    COMMENT "Making the documentation's pages" VERBATIM)
add_custom_target(help_pages ALL DEPENDS ${help}/index.html)
install(DIRECTORY ${help}/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/html COMPONENT viewer)
