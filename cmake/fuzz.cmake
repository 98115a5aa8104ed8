# Fuzz targets: tests/fuzz/<name>_fuzz.cpp and tests/jet/<name>_fuzz.cpp, each seeded by
# corpus/<name>/ beside it. Every target is also a test that runs it for a short while, so that CI
# tries each parser on fresh inputs.
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "The fuzz targets need clang (cmake -DCMAKE_CXX_COMPILER=clang++)")
endif()

set(VELMORA_FUZZ_SECONDS 20 CACHE STRING "How long the test run of each fuzz target lasts")
enable_testing()
file(GLOB FUZZ_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/fuzz/*_fuzz.cpp
    ${CMAKE_SOURCE_DIR}/tests/jet/*_fuzz.cpp)
foreach(fuzz_source ${FUZZ_SOURCES})
    get_filename_component(fuzz_name ${fuzz_source} NAME_WE)
    string(REGEX REPLACE "_fuzz$" "" corpus_name ${fuzz_name})
    get_filename_component(fuzz_folder ${fuzz_source} DIRECTORY)
    add_executable(${fuzz_name} ${fuzz_source})
    # The Jet file code builds and is fuzzed on its own.
    if(fuzz_folder MATCHES "/jet$")
        target_link_libraries(${fuzz_name} PRIVATE velmora_jet)
    else()
        target_link_libraries(${fuzz_name} PRIVATE velmora_core)
    endif()
    target_compile_options(${fuzz_name} PRIVATE ${OWN_WARNINGS})
    target_link_options(${fuzz_name} PRIVATE -fsanitize=fuzzer)
    set_target_properties(${fuzz_name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/fuzz)
    # New inputs go to the build folder; the checked-in seeds are only read.
    set(found_corpus ${CMAKE_BINARY_DIR}/fuzz/corpus/${corpus_name})
    file(MAKE_DIRECTORY ${found_corpus})
    add_test(NAME ${fuzz_name}
        COMMAND ${fuzz_name} -max_total_time=${VELMORA_FUZZ_SECONDS} -timeout=10 -rss_limit_mb=2048
                -print_final_stats=1 ${found_corpus} ${fuzz_folder}/corpus/${corpus_name})
    set_tests_properties(${fuzz_name} PROPERTIES
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1"
        TIMEOUT 600)
endforeach()
