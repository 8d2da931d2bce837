# Shared by the consumer scripts: the compiler flags a consumer needs to match a sanitizer build
# (its libraries need the same runtime), a fresh work directory, and run_step().
set(consumer_flags "")
if(SANITIZE)
    set(consumer_flags "-fsanitize=${SANITIZE}")
endif()
file(REMOVE_RECURSE ${WORK_DIR})

# run_step(<description> <command>...): runs the command and stops the script if it fails;
# what it printed is left in step_output.
function(run_step description)
    execute_process(COMMAND ${ARGN}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${description} failed (${result}):\n${output}\n${errors}")
    endif()
    set(step_output "${output}" PARENT_SCOPE)
endfunction()
