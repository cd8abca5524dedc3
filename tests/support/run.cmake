# Runs a command; stops the test with the command's output if it fails.
function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  ERROR_VARIABLE errors)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${what}: ${result}\n${output}\n${errors}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()
