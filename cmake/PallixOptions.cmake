# Build switches of the project. Sanitizers and the fuzzing engine are carried by the
# pallix::build_flags interface target (PallixTargetDefaults.cmake), never by global flags, and
# visibility is a property of each target (pallix_target_defaults).
#
# Built on its own, the project builds everything. Added to another project (add_subdirectory or
# FetchContent), it builds only the library, its framework libraries and the pallix tool, adds no
# install rules unless PALLIX_INSTALL is set, and leaves the parent's build type alone.

option(PALLIX_BUILD_TOOLS "Build the pallix command-line tool" ON)
option(PALLIX_BUILD_TESTS "Build the test suite" ${PROJECT_IS_TOP_LEVEL})
option(PALLIX_BUILD_BENCHMARKS "Build the benchmarks" ${PROJECT_IS_TOP_LEVEL})
option(PALLIX_BUILD_EXAMPLES "Build the example programs" ${PROJECT_IS_TOP_LEVEL})
option(PALLIX_BUILD_FUZZERS
    "Build the fuzz harnesses (with libFuzzer when PALLIX_FUZZ_ENGINE is ON, otherwise as corpus replayers)"
    ${PROJECT_IS_TOP_LEVEL})
option(PALLIX_FUZZ_ENGINE "Link the fuzz harnesses against clang's libFuzzer" OFF)
option(PALLIX_INSTALL "Add the install rules of the library, its headers, packages and tool"
    ${PROJECT_IS_TOP_LEVEL})
set(PALLIX_SANITIZE "" CACHE STRING "Sanitizers for every project target: empty, address,undefined or thread")

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()
