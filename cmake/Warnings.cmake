# -Wrestrict gives false alarms on string concatenation in g++ 12 (its bug 105651).
#
# sdc_warnings(target): the project's warnings, as errors where SDC_WARNINGS_AS_ERRORS says so.
function(sdc_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
        $<$<CXX_COMPILER_ID:GNU>:-Wuseless-cast -Wduplicated-cond -Wlogical-op -Wno-restrict>
        $<$<BOOL:${SDC_WARNINGS_AS_ERRORS}>:-Werror>)
endfunction()
