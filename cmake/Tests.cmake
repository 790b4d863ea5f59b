# sdc_test_program(target source...): a GoogleTest program; every test of it becomes a test of CTest.
#
# sdc_tests(target source...): the same with the fakes and fixtures of tests/support.
#
# Tests are compiled without optimisation and with precompiled headers, so that they build faster. What they test is not.
find_package(GTest REQUIRED)
include(GoogleTest)

function(sdc_test_program target)
    add_executable(${target} ${ARGN})
    target_link_libraries(${target} PRIVATE GTest::gmock GTest::gtest_main)
    target_precompile_headers(${target} REUSE_FROM sdc_test_support)
    target_compile_options(${target} PRIVATE -O0)
    sdc_warnings(${target})
    gtest_discover_tests(${target} PROPERTIES TIMEOUT 300 DISCOVERY_TIMEOUT 60)
endfunction()

function(sdc_tests target)
    sdc_test_program(${target} ${ARGN})
    target_link_libraries(${target} PRIVATE sdc_test_support)
endfunction()
