# Builds the library on a machine that has a serial port library, by a stand-in for it. Run as
#   cmake -DSOURCE_DIR=... -DWORK_DIR=... -DLIBRARY=... -DCOMPILER=... -DGENERATOR=...
#         -DNM=... -P test_machine_serial_port.cmake
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

# Outside of the project, as on such a machine: an exported target must not name a folder in it.
run("make a folder" mktemp -d)
string(STRIP "${output}" include_dir)
file(COPY ${CMAKE_CURRENT_LIST_DIR}/machine_serial_port/qextserialport.h DESTINATION ${include_dir})

run("configure" ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR} -G ${GENERATOR}
    -DCMAKE_CXX_COMPILER=${COMPILER} -DTOVIK_TOOLS=OFF -DTOVIK_TESTS=OFF -DTOVIK_EXAMPLES=OFF
    -DTOVIK_PRECOMPILE=ON
    -DQEXTSERIALPORT_INCLUDE_DIR=${include_dir}
    -DQEXTSERIALPORT_LIBRARY=${LIBRARY})
run("build" ${CMAKE_COMMAND} --build ${WORK_DIR} --target tovik_iot)
file(REMOVE_RECURSE ${include_dir})
run("list the symbols" ${NM} -DC ${WORK_DIR}/libtovik_iot.so.1)
if(output MATCHES " [TVDW] (vtable for )?QextSerialPort")
  message(FATAL_ERROR "the library has a QextSerialPort of its own:\n${output}")
endif()
if(NOT output MATCHES " U QextSerialPort::QextSerialPort")
  message(FATAL_ERROR "the library does not use the machine's QextSerialPort:\n${output}")
endif()

file(READ ${WORK_DIR}/tovik_iot.pc description)
if(NOT description MATCHES "\nLibs: [^\n]* ${LIBRARY}\n")
  message(FATAL_ERROR "the pkg-config file lacks the serial port library:\n${description}")
endif()
