# Compiler flags shared by every target of the project.
add_compile_options(-Wall -Wextra)
if(ZY_WERROR)
    add_compile_options(-Werror)
endif()

if(ZY_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer
                        -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=address,undefined)
endif()

if(ZY_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "ZY_FUZZ needs clang: configure with CXX=clang++ CC=clang")
    endif()
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()

# zy_fuzz_target(name source... LIBS lib...)
# Builds a libFuzzer binary when ZY_FUZZ is on. The same sources are always
# linked into the replay test (tests/fuzz), which feeds the crashers and
# seed corpora through the entry point in the normal test run.
function(zy_fuzz_target name)
    cmake_parse_arguments(F "" "" "SOURCES;LIBS" ${ARGN})
    if(ZY_FUZZ)
        add_executable(${name} ${F_SOURCES})
        target_link_libraries(${name} PRIVATE ${F_LIBS})
        target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    endif()
endfunction()
