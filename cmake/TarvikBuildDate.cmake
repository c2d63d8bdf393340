# TARVIK_BUILD_DATE, day-month-year: of SOURCE_DATE_EPOCH, else of the last commit, else of the list of changes.
set(epoch "$ENV{SOURCE_DATE_EPOCH}")
if(epoch STREQUAL "")
    execute_process(COMMAND git -C ${PROJECT_SOURCE_DIR} log -1 --format=%ct
        OUTPUT_VARIABLE epoch OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
if(epoch STREQUAL "")
    file(TIMESTAMP ${PROJECT_SOURCE_DIR}/CHANGELOG.md epoch "%s" UTC)
endif()
set(given "$ENV{SOURCE_DATE_EPOCH}")
set(ENV{SOURCE_DATE_EPOCH} "${epoch}")  # string() and the compilers follow it
string(TIMESTAMP TARVIK_BUILD_DATE "%d-%m-%Y" UTC)
if(given STREQUAL "")
    unset(ENV{SOURCE_DATE_EPOCH})
endif()
