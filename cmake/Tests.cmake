# sdc_tests(target source...): a GoogleTest program; every test of it becomes a test of CTest.
find_package(GTest REQUIRED)
include(GoogleTest)

function(sdc_tests target)
    add_executable(${target} ${ARGN})
    target_link_libraries(${target} PRIVATE sdc_test_support GTest::gmock GTest::gtest_main)
    sdc_warnings(${target})
    gtest_discover_tests(${target} PROPERTIES TIMEOUT 300 DISCOVERY_TIMEOUT 60)
endfunction()
