# Runs the tests of the dashboard in a copy of their folder, so that nothing is installed into the
# sources: node finds modules beside the files that use them.
file(GLOB files ${SOURCE_DIR}/*.mjs ${SOURCE_DIR}/package.json ${SOURCE_DIR}/package-lock.json)
file(GLOB old ${WORK_DIR}/*.mjs)
if(old)
  file(REMOVE ${old})
endif()
file(COPY ${files} DESTINATION ${WORK_DIR})

# Installed once, and again when the list of modules has changed.
set(stamp ${WORK_DIR}/node_modules/.installed)
set(lock ${WORK_DIR}/package-lock.json)
if(NOT EXISTS ${stamp} OR ${lock} IS_NEWER_THAN ${stamp})
  execute_process(COMMAND ${NPM} ci --no-audit --no-fund WORKING_DIRECTORY ${WORK_DIR}
    RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "npm could not install what package-lock.json lists")
  endif()
  file(TOUCH ${stamp})
endif()

set(ENV{TOVIK_CLOUD} ${CLOUD})
set(ENV{TOVIK_PLANT} ${PLANT})
set(ENV{TOVIK_CHROMIUM} ${CHROMIUM})
file(GLOB tests ${WORK_DIR}/*.test.mjs)
execute_process(COMMAND ${NODE} run.mjs ${tests} WORKING_DIRECTORY ${WORK_DIR} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "the dashboard does not do what it should, see above")
endif()
