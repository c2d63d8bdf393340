# The libraries that TARVIK stands on. Each room links only what it uses.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(Boost REQUIRED)
find_package(ZLIB REQUIRED)
find_package(BZip2 REQUIRED)
find_package(TIFF REQUIRED)
find_package(OpenSSL REQUIRED COMPONENTS Crypto)
find_package(TBB REQUIRED)
find_package(nlohmann_json REQUIRED)
pkg_check_modules(LZ4 REQUIRED IMPORTED_TARGET liblz4)
pkg_check_modules(HWY REQUIRED IMPORTED_TARGET libhwy)
pkg_check_modules(DEFLATE REQUIRED IMPORTED_TARGET libdeflate)
pkg_check_modules(ZSTD REQUIRED IMPORTED_TARGET libzstd)
pkg_check_modules(CURL REQUIRED IMPORTED_TARGET libcurl)
pkg_check_modules(ZMQ REQUIRED IMPORTED_TARGET libzmq)
pkg_check_modules(HDF5 REQUIRED IMPORTED_TARGET hdf5)

if(TARVIK_FUZZ)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Core)  # for the requests of scripts
    return()
endif()
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets OpenGL OpenGLWidgets Network Svg Xml Test)
# Without the folders of each test, which no test asks for: the compiler cache would serve no other
# checkout.
set_property(TARGET Qt6::Test PROPERTY INTERFACE_COMPILE_DEFINITIONS QT_TESTLIB_LIB)

if(TARVIK_BUILD_TESTS)
    find_package(GTest REQUIRED)
    # Debian's own Python has the packages that the tests compare with; another one first in the
    # path may not.
    find_program(TARVIK_PYTHON NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH REQUIRED)
    find_program(TARVIK_XVFB_RUN xvfb-run REQUIRED)
endif()
if(TARVIK_BUILD_BENCH)
    find_package(benchmark REQUIRED)
endif()
