# One folder = one room = one target Tarvik::<room> = one test folder of the same path.

# tarvik_add_room(name SOURCES ... NEEDS <public arrows> USES <hidden ones> [QT])
# QT runs moc over the room's headers.
function(tarvik_add_room name)
    cmake_parse_arguments(PARSE_ARGV 1 ROOM "QT" "" "SOURCES;NEEDS;USES")
    add_library(tarvik_${name} STATIC ${ROOM_SOURCES})
    add_library(Tarvik::${name} ALIAS tarvik_${name})
    target_include_directories(tarvik_${name} PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(tarvik_${name} PUBLIC ${ROOM_NEEDS} PRIVATE ${ROOM_USES} tarvik_options)
    if(ROOM_QT)
        set_target_properties(tarvik_${name} PROPERTIES AUTOMOC ON)
        target_compile_definitions(tarvik_${name} PRIVATE QT_NO_CAST_FROM_BYTEARRAY)
    endif()
endfunction()

# tarvik_add_test(name SOURCES ... NEEDS ... LABELS unit|gui|system|slow [QT] [GUI] [NO_MAIN])
# A GoogleTest program; its cases run as one ctest entry, under a virtual X server with GUI.
# NO_MAIN: the sources bring a main of their own.
function(tarvik_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 TEST "QT;GUI;NO_MAIN" "TIMEOUT" "SOURCES;NEEDS;LABELS")
    add_executable(${name} ${TEST_SOURCES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name}
        PRIVATE ${TEST_NEEDS} tarvik_source_path GTest::gmock tarvik_options)
    if(NOT TEST_NO_MAIN)
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
    endif()
    target_compile_definitions(${name} PRIVATE TARVIK_PYTHON="${TARVIK_PYTHON}")
    if(TEST_QT OR TEST_GUI)
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
    endif()
    if(TEST_GUI)
        add_test(NAME ${name}
            COMMAND ${TARVIK_XVFB_RUN} -a -s "-screen 0 1600x1200x24" $<TARGET_FILE:${name}>)
    else()
        add_test(NAME ${name} COMMAND ${name})
    endif()
    if(NOT TEST_LABELS)
        set(TEST_LABELS unit)
    endif()
    if(NOT TEST_TIMEOUT)
        set(TEST_TIMEOUT 300)
    endif()
    set_tests_properties(${name} PROPERTIES LABELS "${TEST_LABELS}" TIMEOUT ${TEST_TIMEOUT})
endfunction()

# tarvik_add_bench(name SOURCES ... NEEDS ...): a Google Benchmark program.
function(tarvik_add_bench name)
    cmake_parse_arguments(PARSE_ARGV 1 BENCH "" "" "SOURCES;NEEDS")
    add_executable(${name} ${BENCH_SOURCES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name}
        PRIVATE ${BENCH_NEEDS} tarvik_source_path benchmark::benchmark tarvik_options)
    target_compile_definitions(${name} PRIVATE TARVIK_PYTHON="${TARVIK_PYTHON}")
endfunction()
