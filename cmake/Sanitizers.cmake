# Applies SDC_SANITIZERS to every target that follows. A report ends the program with a failure.
if(SDC_SANITIZERS)
    list(JOIN SDC_SANITIZERS "," sdc_sanitizers)
    add_compile_options(-fsanitize=${sdc_sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${sdc_sanitizers})
    if("undefined" IN_LIST SDC_SANITIZERS)
        # The module keeps the type information of the platform's interfaces to itself; types are compared by name.
        add_compile_options(-fno-sanitize=vptr)
    endif()
endif()
