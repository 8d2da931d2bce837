# Usage requirements shared by every target of the project: language level, warnings and the
# sanitizer or fuzzing instrumentation chosen at configure time.

add_library(pallix_build_flags INTERFACE)
add_library(pallix::build_flags ALIAS pallix_build_flags)

target_compile_features(pallix_build_flags INTERFACE cxx_std_17)
target_compile_options(pallix_build_flags INTERFACE
    $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall -Wextra -Wpedantic>)

if(PALLIX_SANITIZE)
    set(_pallix_sanitize_flags -fsanitize=${PALLIX_SANITIZE} -fno-omit-frame-pointer)
    if(PALLIX_SANITIZE MATCHES "undefined")
        list(APPEND _pallix_sanitize_flags -fno-sanitize-recover=undefined)
    endif()
    target_compile_options(pallix_build_flags INTERFACE ${_pallix_sanitize_flags})
    target_link_options(pallix_build_flags INTERFACE ${_pallix_sanitize_flags})
endif()

if(PALLIX_FUZZ_ENGINE)
    # Coverage instrumentation for the library; the harnesses add the engine's main.
    target_compile_options(pallix_build_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

# pallix_target_defaults(<target>): applies the shared flags to a target of this project. Symbols
# are hidden unless exported by a generated export header, inline functions included.
function(pallix_target_defaults target)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:pallix::build_flags>)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        C_VISIBILITY_PRESET hidden
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# pallix_stage_public_headers(<target> <staging dir> <header>...): copies the public headers of a
# library into a staging directory of the build tree and makes it the library's include directory
# for the targets that link it, so that they see exactly what an installed package holds. The
# copies are made at configure time; editing a header re-runs the configuration, which copies it
# again. Headers that left the list are removed from the staging directory.
function(pallix_stage_public_headers target staging_dir)
    file(MAKE_DIRECTORY ${staging_dir})
    set(_staged "")
    foreach(header IN LISTS ARGN)
        get_filename_component(_name ${header} NAME)
        list(APPEND _staged ${staging_dir}/${_name})
        if(NOT header STREQUAL "${staging_dir}/${_name}")
            configure_file(${header} ${staging_dir}/${_name} COPYONLY)
        endif()
    endforeach()
    file(GLOB _present ${staging_dir}/*.h)
    foreach(file IN LISTS _present)
        if(NOT file IN_LIST _staged)
            file(REMOVE ${file})
        endif()
    endforeach()
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${staging_dir}>)
endfunction()
