# Script mode: SOURCE_DIR, CONSUMER_DIR, WORK_DIR, CXX_COMPILER, GENERATOR, SANITIZE.
# Configures and builds an application that adds PallixRuntime with add_subdirectory, then runs
# it. The application's CMakeLists.txt checks the build type and the targets the subproject
# defined; its main.cpp checks that no internal header is reachable.
# The sanitizer flags reach the subproject too: the library is built with the same runtime.
include(${CMAKE_CURRENT_LIST_DIR}/ConsumerSteps.cmake)
set(build_dir ${WORK_DIR}/build)

run_step("configure the application" ${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${build_dir}
    -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${CXX_COMPILER} -DPALLIX_SOURCE_DIR=${SOURCE_DIR}
    "-DCMAKE_CXX_FLAGS=${consumer_flags}")

# Nothing of the project's own test, benchmark, fuzzing or example directories was configured.
foreach(directory tests bench fuzz examples)
    if(EXISTS ${build_dir}/pallix/${directory})
        message(FATAL_ERROR "the subproject configured its ${directory} directory")
    endif()
endforeach()
file(STRINGS ${build_dir}/CMakeCache.txt build_type REGEX "^CMAKE_BUILD_TYPE:")
if(NOT build_type MATCHES "^CMAKE_BUILD_TYPE:STRING=$")
    message(FATAL_ERROR "the subproject set the application's build type: ${build_type}")
endif()
if(EXISTS ${build_dir}/pallix/cmake_install.cmake)
    file(READ ${build_dir}/pallix/cmake_install.cmake install_rules)
    if(install_rules MATCHES "PallixRuntimeTargets")
        message(FATAL_ERROR "the subproject added install rules without PALLIX_INSTALL")
    endif()
endif()

# Only what the application needs: the library and its framework libraries.
run_step("build the application" ${CMAKE_COMMAND} --build ${build_dir} --target consumer -j 2)
if(EXISTS ${build_dir}/pallix/tools/pallix/pallix)
    message(FATAL_ERROR "building the application built the pallix tool as well")
endif()
run_step("run the application" ${build_dir}/consumer)
if(NOT step_output MATCHES "subproject consumer: root ready")
    message(FATAL_ERROR "unexpected output: ${step_output}")
endif()
