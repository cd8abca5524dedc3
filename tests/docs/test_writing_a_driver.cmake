# Does what docs/writing-a-driver.md says, in a folder with the examples and an installed library.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
file(COPY ${SOURCE_DIR}/examples/template DESTINATION ${WORK_DIR}/examples)
foreach(component IN ITEMS library development)
  run("install ${component}" ${CMAKE_COMMAND} --install ${BUILD_DIR}
      --prefix ${WORK_DIR}/prefix --component ${component})
endforeach()

# A busy machine may take longer over an answer than the second that the tool gives it.
file(WRITE ${WORK_DIR}/bin/tovik-host
     "#!/bin/sh\nexec '${HOST_DIR}/tovik-host' \"$@\" --response-timeout 30000\n")
file(CHMOD ${WORK_DIR}/bin/tovik-host PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)

file(GLOB template ${SOURCE_DIR}/examples/template/*.cpp ${SOURCE_DIR}/examples/template/*.h)
run("docs/writing-a-driver.md" ${PYTHON} ${CMAKE_CURRENT_LIST_DIR}/run_guide.py
    ${SOURCE_DIR}/docs/writing-a-driver.md --folder ${WORK_DIR} --path ${WORK_DIR}/bin
    --set CMAKE_PREFIX_PATH=${WORK_DIR}/prefix --set CMAKE_GENERATOR=${GENERATOR}
    --set CXX=${CXX} "--set=CXXFLAGS=${FLAGS}" --excerpts ${template})
file(REMOVE_RECURSE ${WORK_DIR})
