# Script mode: CHECK_SCRIPT, GADGET_DIR, WORK_DIR, CXX_COMPILER.
# Builds each version of the gadget library (without sanitizers: it is only read, never run),
# writes the baseline from the first and checks every version against it.
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})

function(build_gadget version)
    set(library ${WORK_DIR}/${version}/libgadget.so)
    file(MAKE_DIRECTORY ${WORK_DIR}/${version})
    execute_process(COMMAND ${CXX_COMPILER} -std=c++17 -g -O0 -fPIC -shared
            -fvisibility=hidden ${ARGN} -I${GADGET_DIR} ${GADGET_DIR}/Gadget.cpp -o ${library}
        RESULT_VARIABLE result ERROR_VARIABLE errors)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "building the ${version} gadget failed:\n${errors}")
    endif()
endfunction()

# check(<version> <expected status> <expected last line>)
function(check version expected_status expected_text)
    execute_process(COMMAND ${CHECK_SCRIPT} --baseline ${WORK_DIR}/gadget.abi
            --library ${WORK_DIR}/${version}/libgadget.so --headers ${GADGET_DIR}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(NOT result STREQUAL expected_status OR NOT "${output}${errors}" MATCHES "${expected_text}")
        message(FATAL_ERROR "the ${version} gadget: expected status ${expected_status} and "
            "'${expected_text}', got ${result}:\n${output}${errors}")
    endif()
    message(STATUS "${version}: status ${result} as expected")
endfunction()

build_gadget(baseline)
build_gadget(added -DGADGET_ADDED)
build_gadget(swapped -DGADGET_SWAPPED)
build_gadget(grown -DGADGET_GROWN)
build_gadget(removed -DGADGET_REMOVED)

execute_process(COMMAND ${CHECK_SCRIPT} --update --baseline ${WORK_DIR}/gadget.abi
        --library ${WORK_DIR}/baseline/libgadget.so --headers ${GADGET_DIR}
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
if(NOT result EQUAL 0 OR NOT EXISTS ${WORK_DIR}/gadget.abi)
    message(FATAL_ERROR "writing the baseline failed (${result}):\n${output}${errors}")
endif()

check(baseline 0 "matches the baseline")
check(added 0 "only adds to the baseline")
check(swapped 1 "vtable offset of method virtual int Gadget::first")
check(grown 1 "type size changed")
check(removed 1 "Removed function")
