# Runs one simulator script with --trace and compares what it prints with the
# expected transcript. With an expected-errors file the script must stop with
# exit status 2 and exactly those lines on standard error.
#
#   cmake -DSIM=... -DSCRIPT=x.sim -DEXPECTED=x.out -DACTUAL=x.actual [-DERRORS=x.err] -P RunScenario.cmake
execute_process(
  COMMAND ${SIM} --trace ${SCRIPT}
  OUTPUT_VARIABLE actual
  ERROR_VARIABLE errors
  RESULT_VARIABLE status)
file(WRITE ${ACTUAL} "${actual}")
file(READ ${EXPECTED} expected)

set(failed FALSE)
if(DEFINED ERRORS AND EXISTS ${ERRORS})
  file(READ ${ERRORS} expectedErrors)
  if(NOT status EQUAL 2 OR NOT errors STREQUAL expectedErrors)
    message("expected exit status 2 and standard error:\n${expectedErrors}")
    message("got exit status ${status} and standard error:\n${errors}")
    set(failed TRUE)
  endif()
elseif(NOT status EQUAL 0)
  message("exit status ${status}, standard error:\n${errors}")
  set(failed TRUE)
endif()

if(NOT actual STREQUAL expected)
  find_program(DIFF diff)
  if(DIFF)
    execute_process(COMMAND ${DIFF} -u ${EXPECTED} ${ACTUAL})
  else()
    message("expected:\n${expected}\nactual:\n${actual}")
  endif()
  set(failed TRUE)
endif()

if(failed)
  message(FATAL_ERROR "transcript of ${SCRIPT} differs (output kept in ${ACTUAL})")
endif()
