# Builds the Modbus driver by itself against the installed library, as a driver's author does, and
# looks at what comes out. Run as
#   cmake -DBUILD_DIR=... -DSOURCE_DIR=... -DWORK_DIR=... -DLIBDIR=... -DCXX=... -DFLAGS=...
#         -DGENERATOR=... -P test_standalone.cmake
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/../../support/run.cmake)

set(PREFIX ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})
foreach(component IN ITEMS library development)
  run("install ${component}" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX}
      --component ${component})
endforeach()
find_program(CCACHE ccache)
set(launcher)
if(CCACHE)
  set(launcher -DCMAKE_CXX_COMPILER_LAUNCHER=${CCACHE})
endif()
# A copy, so that nothing around it is found by accident.
file(COPY ${SOURCE_DIR}/ DESTINATION ${WORK_DIR}/source)
run("configure the driver" ${CMAKE_COMMAND} -S ${WORK_DIR}/source -B ${WORK_DIR}/build
    -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${CXX} "-DCMAKE_CXX_FLAGS=${FLAGS}"
    ${launcher} -DCMAKE_PREFIX_PATH=${PREFIX})
run("build the driver" ${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run("install the driver" ${CMAKE_COMMAND} --install ${WORK_DIR}/build --prefix ${PREFIX})
foreach(name IN ITEMS libmodbus_drv.so.1 libmodbus_drv.so.1.0.0)
  if(NOT EXISTS ${PREFIX}/${LIBDIR}/tovik/${name})
    message(FATAL_ERROR "${name} has not been installed")
  endif()
endforeach()
file(REMOVE_RECURSE ${WORK_DIR})
