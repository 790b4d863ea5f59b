# sdc_module(target exports source...): a plug-in library for the host.
#
# C++17 and the standard library alone. Hidden visibility; what is exported is listed in the version script `exports`. The
# host's symbols stay undefined until it loads the library. Paths in the binary are relative to the source tree, so that two
# builds in two folders give the same file. What the three options for speed do is told in docs/performance.md.
function(sdc_module target exports)
    add_library(${target} SHARED ${ARGN})
    set_target_properties(${target} PROPERTIES
        CXX_STANDARD 17
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        LINK_DEPENDS ${exports})
    target_compile_options(${target} PRIVATE
        -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=
        -ffile-prefix-map=${PROJECT_BINARY_DIR}=build
        -fno-semantic-interposition -fno-plt -falign-functions=64
        $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
    target_link_options(${target} PRIVATE LINKER:--version-script=${exports})
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    find_package(Threads REQUIRED)
    target_link_libraries(${target} PUBLIC Threads::Threads)
    sdc_warnings(${target})
endfunction()
