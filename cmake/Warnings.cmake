# -Wrestrict gives false alarms on string concatenation in g++ 12 (its bug 105651).
#
# Under sanitizers it gives others, -Wmaybe-uninitialized, on regular expressions (its bug 105562).
#
# sdc_warnings(target): the project's warnings, as errors where SDC_WARNINGS_AS_ERRORS says so.
function(sdc_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
        $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
        $<$<CXX_COMPILER_ID:GNU>:-Wuseless-cast -Wduplicated-cond -Wlogical-op -Wno-restrict>
        $<$<BOOL:${SDC_WARNINGS_AS_ERRORS}>:-Werror>)
    if(SDC_SANITIZERS)
        target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    endif()
endfunction()
