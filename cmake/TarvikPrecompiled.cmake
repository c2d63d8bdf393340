# Half of the time of a source with Qt, and of a test, went into the headers of Qt, GoogleTest and
# the standard library. Each kind of target has them precompiled once, and shares them.

option(TARVIK_PRECOMPILE "Precompile the headers of Qt and GoogleTest" ON)

# tarvik_precompiled(kind libraries...): a target that only holds cmake/precompiled/<kind>.h.
function(tarvik_precompiled kind)
    if(NOT TARVIK_PRECOMPILE OR TARVIK_FUZZ)
        return()
    endif()
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/precompiled/${kind}.cpp CONTENT "// Nothing.\n")
    add_library(tarvik_precompiled_${kind} OBJECT ${PROJECT_BINARY_DIR}/precompiled/${kind}.cpp)
    target_include_directories(tarvik_precompiled_${kind} PRIVATE ${PROJECT_SOURCE_DIR})
    target_link_libraries(tarvik_precompiled_${kind} PRIVATE ${ARGN} tarvik_options)
    target_compile_options(tarvik_precompiled_${kind} PRIVATE -fPIC)
    target_precompile_headers(tarvik_precompiled_${kind}
        PRIVATE \"cmake/precompiled/${kind}.h\")
endfunction()

# tarvik_precompile(target kind): the target uses the headers of that kind.
function(tarvik_precompile target kind)
    if(TARGET tarvik_precompiled_${kind})
        # The compiler cache needs the first option to look into what is precompiled. The second is
        # in force wherever Qt is linked; who shares headers has to share it.
        target_compile_options(${target} PRIVATE -fpch-preprocess -fPIC)
        target_precompile_headers(${target} REUSE_FROM tarvik_precompiled_${kind})
    endif()
endfunction()

tarvik_precompiled(core Qt6::Core)
tarvik_precompiled(widgets Qt6::Widgets)
foreach(kind core widgets)
    if(TARGET tarvik_precompiled_${kind})
        target_compile_definitions(tarvik_precompiled_${kind} PRIVATE QT_NO_CAST_FROM_BYTEARRAY)
    endif()
endforeach()
if(TARVIK_BUILD_TESTS)
    tarvik_precompiled(tests GTest::gmock)
    tarvik_precompiled(coretests GTest::gmock Qt6::Gui Qt6::Test)
    tarvik_precompiled(widgettests GTest::gmock Qt6::Widgets Qt6::Test)
endif()
