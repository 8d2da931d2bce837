# Script mode: BUILD_DIR, SOURCE_DIR, HEADER_LIST, CONSUMER_DIR, WORK_DIR, CXX_COMPILER, GENERATOR,
# SANITIZE.
include(${CMAKE_CURRENT_LIST_DIR}/ConsumerSteps.cmake)
set(prefix ${WORK_DIR}/prefix)

run_step("install" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

foreach(required
        include/PallixRuntime/PallixRuntime.h
        include/PallixRuntime/PRuntime.h
        include/PallixRuntime/NString.h
        include/PallixRuntime/PallixRuntimeExport.h
        lib/cmake/PallixRuntime/PallixRuntimeConfig.cmake
        lib/cmake/PallixRuntime/PallixRuntimeConfigVersion.cmake
        lib/pkgconfig/PallixRuntime.pc
        bin/pallix)
    file(GLOB found ${prefix}/${required} ${prefix}/lib*/${required}
        ${prefix}/lib/*/${required})
    string(REPLACE "lib/" "" tail ${required})
    file(GLOB_RECURSE found_anywhere ${prefix}/*/${tail})
    if(NOT EXISTS ${prefix}/${required} AND NOT found_anywhere)
        message(FATAL_ERROR "the installed tree lacks ${required}")
    endif()
endforeach()
# The installed headers are the public ones and nothing else: no internal header is installed.
file(READ ${HEADER_LIST} expected_headers)
file(GLOB installed_headers RELATIVE ${prefix}/include/PallixRuntime
    ${prefix}/include/PallixRuntime/*)
list(SORT installed_headers)
if(NOT installed_headers STREQUAL expected_headers)
    message(FATAL_ERROR "the installed headers are\n  ${installed_headers}\n"
        "instead of\n  ${expected_headers}")
endif()

# The exported targets name only the installed include directories, never the source or build
# tree.
file(GLOB_RECURSE target_files ${prefix}/*/PallixRuntimeTargets*.cmake)
set(include_properties_seen 0)
foreach(target_file IN LISTS target_files)
    file(READ ${target_file} text)
    foreach(tree ${SOURCE_DIR} ${BUILD_DIR})
        string(FIND "${text}" "${tree}" found)
        if(NOT found EQUAL -1)
            message(FATAL_ERROR "${target_file} names ${tree}")
        endif()
    endforeach()
    # Each match is a list of directories, so the matches come back as one list of them.
    string(REGEX MATCHALL "INTERFACE_INCLUDE_DIRECTORIES \"[^\"]*\"" directories "${text}")
    foreach(directory IN LISTS directories)
        if(directory MATCHES "^INTERFACE_INCLUDE_DIRECTORIES \"")
            math(EXPR include_properties_seen "${include_properties_seen} + 1")
        endif()
        string(REGEX REPLACE "^INTERFACE_INCLUDE_DIRECTORIES \"|\"$" "" directory "${directory}")
        if(NOT directory MATCHES "^\\\${_IMPORT_PREFIX}/include(/PallixRuntime)?$")
            message(FATAL_ERROR "an exported target's include directory is ${directory}")
        endif()
    endforeach()
endforeach()
if(include_properties_seen EQUAL 0)
    message(FATAL_ERROR "no exported target names an include directory")
endif()

file(GLOB_RECURSE sonames ${prefix}/*libPallixRuntime.so.5)
if(NOT sonames)
    message(FATAL_ERROR "the installed tree lacks libPallixRuntime.so.5")
endif()

# The installed tool runs from the prefix, finding its library through its relative RPATH.
run_step("installed pallix --version" ${prefix}/bin/pallix --version)
if(NOT step_output MATCHES "pallix 5\\.0\\.0")
    message(FATAL_ERROR "unexpected version output: ${step_output}")
endif()

# Consumer 1: the CMake package.
run_step("configure the CMake consumer" ${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/cmake
    -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${CXX_COMPILER} -DCMAKE_PREFIX_PATH=${prefix}
    "-DCMAKE_CXX_FLAGS=${consumer_flags}")
run_step("build the CMake consumer" ${CMAKE_COMMAND} --build ${WORK_DIR}/cmake)
run_step("run the CMake consumer" ${WORK_DIR}/cmake/consumer)
if(NOT step_output MATCHES "consumer: root ready")
    message(FATAL_ERROR "unexpected consumer output: ${step_output}")
endif()

# Consumer 2: pkg-config, with the prefix pointed at the scratch tree. Only this package's file
# is rewritten: --define-variable=prefix would move the prefix of the Qt packages it requires
# as well.
file(GLOB_RECURSE pc_file ${prefix}/*PallixRuntime.pc)
file(READ ${pc_file} pc_text)
string(REGEX REPLACE "(^|\n)prefix=[^\n]*" "\\1prefix=${prefix}" pc_text "${pc_text}")
set(pc_dir ${WORK_DIR}/pkgconfig)
file(WRITE ${pc_dir}/PallixRuntime.pc "${pc_text}")
set(ENV{PKG_CONFIG_PATH} ${pc_dir})
run_step("pkg-config" pkg-config --cflags --libs PallixRuntime)
string(STRIP "${step_output}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
file(GLOB_RECURSE library ${prefix}/*libPallixRuntime.so)
get_filename_component(libdir ${library} DIRECTORY)
run_step("build the pkg-config consumer" ${CXX_COMPILER} -std=c++17 -fPIC ${consumer_flags}
    ${CONSUMER_DIR}/main.cpp -o ${WORK_DIR}/pkgconfig-consumer ${flags}
    -Wl,-rpath,${libdir})
run_step("run the pkg-config consumer" ${WORK_DIR}/pkgconfig-consumer)
if(NOT step_output MATCHES "consumer: root ready")
    message(FATAL_ERROR "unexpected consumer output: ${step_output}")
endif()
