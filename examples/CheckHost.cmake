# Runs HOST SOURCE TEXT IMAGE and fails unless it ends with STATUS and its output, on both streams,
# contains each of EXPECTED.

execute_process(COMMAND ${HOST} ${SOURCE} ${TEXT} ${IMAGE}
    RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT status STREQUAL STATUS)
    message(FATAL_ERROR "ended with ${status} instead of ${STATUS}:\n${output}")
endif()
foreach(expected IN LISTS EXPECTED)
    string(FIND "${output}" "${expected}" position)
    if(position EQUAL -1)
        message(FATAL_ERROR "\"${expected}\" is missing in:\n${output}")
    endif()
endforeach()
