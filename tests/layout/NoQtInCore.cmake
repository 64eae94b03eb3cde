# Fails when a file of the core (imaging/, codec/, tavix/, mfx/, app/doc/,
# app/cmds/) or of zytool (cli/) includes a Qt header: the model must stay
# testable and usable without a window, and zytool runs where no Qt is. Run as: cmake -DROOT=<source dir> -P NoQtInCore.cmake
set(offenders "")
foreach(folder imaging codec tavix mfx app/doc app/cmds cli)
    file(GLOB_RECURSE files ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.hpp
                            ${ROOT}/${folder}/*.cpp ${ROOT}/${folder}/*.cc)
    foreach(file ${files})
        file(STRINGS ${file} lines REGEX "^[ \t]*#[ \t]*include[ \t]*[<\"](Q[A-Za-z]+|Qt[A-Za-z]*/)")
        if(lines)
            string(REPLACE "${ROOT}/" "" relative ${file})
            list(APPEND offenders "${relative}: ${lines}")
        endif()
    endforeach()
endforeach()
if(offenders)
    string(REPLACE ";" "\n  " text "${offenders}")
    message(FATAL_ERROR "Qt headers in the core:\n  ${text}")
endif()
message(STATUS "no Qt header in the core")
