# Build switches of the project. Sanitizers and the fuzzing engine are carried by the
# pallix::build_flags interface target (PallixTargetDefaults.cmake), never by global flags.

option(PALLIX_BUILD_TOOLS "Build the pallix command-line tool" ON)
option(PALLIX_BUILD_TESTS "Build the test suite" ON)
option(PALLIX_BUILD_BENCHMARKS "Build the benchmarks" ON)
option(PALLIX_BUILD_EXAMPLES "Build the example programs" ON)
option(PALLIX_BUILD_FUZZERS
    "Build the fuzz harnesses (with libFuzzer when PALLIX_FUZZ_ENGINE is ON, otherwise as corpus replayers)" ON)
option(PALLIX_FUZZ_ENGINE "Link the fuzz harnesses against clang's libFuzzer" OFF)
set(PALLIX_SANITIZE "" CACHE STRING "Sanitizers for every project target: empty, address,undefined or thread")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
