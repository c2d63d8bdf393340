# The Debian packages that tools/make-package.sh makes: tarvik (viewer, tarvik-image, reader of HDF5
# files), tarvik-simulator (trial data and a trial detector) and python3-tarvik.

set(deb ${PROJECT_SOURCE_DIR}/packaging/deb)
set(packed ${PROJECT_BINARY_DIR}/packaging)
file(MAKE_DIRECTORY ${packed})

# Without a time stamp the same sources make the same file.
find_program(TARVIK_GZIP gzip REQUIRED)
function(tarvik_packed_log source name)
    add_custom_command(OUTPUT ${packed}/${name}
        COMMAND sh -c "\"$0\" -9nc \"$1\" > \"$2\"" ${TARVIK_GZIP} ${source} ${packed}/${name}
        DEPENDS ${source} VERBATIM)
endfunction()
tarvik_packed_log(${deb}/changelog changelog.Debian.gz)
tarvik_packed_log(${PROJECT_SOURCE_DIR}/CHANGELOG.md changelog.gz)
add_custom_target(packed_logs ALL DEPENDS ${packed}/changelog.Debian.gz ${packed}/changelog.gz)

# Where Debian's own Python looks; `cmake --install` leaves it out, pip serves all others.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/python/src/tarvik DESTINATION lib/python3/dist-packages
    COMPONENT python EXCLUDE_FROM_ALL PATTERN __pycache__ EXCLUDE)

set(CPACK_COMPONENTS_ALL viewer simulator python)
set(names tarvik tarvik-simulator python3-tarvik)
foreach(component name IN ZIP_LISTS CPACK_COMPONENTS_ALL names)
    string(TOUPPER ${component} key)
    set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name})
    install(FILES ${deb}/copyright ${packed}/changelog.Debian.gz ${packed}/changelog.gz
        DESTINATION share/doc/${name} COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()

set(CPACK_COMPONENT_VIEWER_DESCRIPTION
"viewer and control station for X-ray detector images
TARVIK opens CBF, TIFF, EDF and HDF5/NeXus images and series of hybrid pixel
X-ray detectors, shows counts over many decades, measures spots, lines and
rings, edits headers, follows a series while it is taken, and drives a
detector. tarvik-image does the same without a window.")
set(CPACK_DEBIAN_VIEWER_PACKAGE_SECTION science)
set(CPACK_DEBIAN_VIEWER_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_VIEWER_PACKAGE_RECOMMENDS "fonts-urw-base35, libgl1-mesa-dri")
set(CPACK_DEBIAN_VIEWER_PACKAGE_SUGGESTS "hdf5-filter-plugin, python3-tarvik, tarvik-simulator")

set(CPACK_COMPONENT_SIMULATOR_DESCRIPTION
"trial data and a trial detector for TARVIK
tarvik-demo-data writes rotation series of a simulated crystal in all formats;
tarvik-control-unit-simulator stands in for the control unit of a detector,
with series, stream, monitor and a script of faults.")
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SECTION science)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_ENHANCES "tarvik")

set(CPACK_COMPONENT_PYTHON_DESCRIPTION
"TARVIK in the hands of a Python script
Shows NumPy arrays in the windows of TARVIK, draws over them, and brings back
what the user sees, draws and clicks.")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3 (>= 3.11), python3-numpy, tarvik (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${deb}/postinst ${deb}/prerm)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The TARVIK maintainers <maintainers@tarvik.example>")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGE_VENDOR TARVIK)
# Folders as Debian wants them, whatever the mask of whoever builds.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
