# quillon_add_test(<name> SOURCES <files...> LIBS <targets...> [RUN <wrapper command...>])
function(quillon_add_test name)
    cmake_parse_arguments(T "" "" "SOURCES;LIBS;RUN" ${ARGN})
    add_executable(${name} ${T_SOURCES})
    target_link_libraries(${name} PRIVATE Qt6::Test ${T_LIBS})
    add_test(NAME ${name} COMMAND ${T_RUN} $<TARGET_FILE:${name}>)
    set(env "QT_QPA_PLATFORM=offscreen")
    if(QUILLON_SANITIZE)
        # Libraries below us (fontconfig, GLib's type system) keep allocations for the process's life.
        list(APPEND env "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/cmake/lsan.supp:print_suppressions=0"
                         "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1")
    endif()
    set_tests_properties(${name} PROPERTIES ENVIRONMENT "${env}")
endfunction()
