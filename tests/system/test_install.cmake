# Installs the built library into a folder of its own and uses it from there in the two ways that
# the documentation names. Run as
#   cmake -DBUILD_DIR=... -DWORK_DIR=... -DLIBDIR=... -DINCLUDEDIR=... -DHEADERS=a,b,...
#         -DCXX=... -DFLAGS=... -DBUILD_TYPE=... -DGENERATOR=... -P test_install.cmake
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

# In the version that the consumer writes, an empty configuration takes 71 bytes, the default item
# 53, and the default group 30.
set(EXPECTED "version 67155 transparent 0 port 443 timeout 10 baud 19200 stored 154 warn 1\n")
set(PREFIX ${WORK_DIR}/prefix)
set(CONSUMER ${CMAKE_CURRENT_LIST_DIR}/consumer)
separate_arguments(FLAGS_LIST UNIX_COMMAND "${FLAGS}")

function(expect what found expected)
  if(NOT found STREQUAL expected)
    message(FATAL_ERROR "${what}: found\n${found}\nexpected\n${expected}")
  endif()
endfunction()

function(install_the_library)
  file(REMOVE_RECURSE ${WORK_DIR})
  foreach(component IN ITEMS library development)
    run("install ${component}" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX}
        --component ${component})
  endforeach()
endfunction()

# Nothing is missing, and nothing is there that only the library's own sources need.
function(check_the_files)
  file(GLOB_RECURSE headers RELATIVE ${PREFIX}/${INCLUDEDIR}/tovik ${PREFIX}/${INCLUDEDIR}/*)
  string(REPLACE "," ";" expected "${HEADERS}")
  list(SORT headers)
  list(SORT expected)
  expect("installed headers" "${headers}" "${expected}")
  file(GLOB libraries RELATIVE ${PREFIX}/${LIBDIR} ${PREFIX}/${LIBDIR}/lib*)
  list(SORT libraries)
  expect("installed libraries" "${libraries}"
         "libtovik_iot.so;libtovik_iot.so.1;libtovik_iot.so.1.6.83")
endfunction()

function(use_with_cmake)
  run("configure the consumer" ${CMAKE_COMMAND} -S ${CONSUMER} -B ${WORK_DIR}/with-cmake
      -G ${GENERATOR} -DCMAKE_BUILD_TYPE=${BUILD_TYPE} -DCMAKE_CXX_COMPILER=${CXX}
      "-DCMAKE_CXX_FLAGS=${FLAGS}" -DCMAKE_PREFIX_PATH=${PREFIX})
  run("build the consumer" ${CMAKE_COMMAND} --build ${WORK_DIR}/with-cmake)
  run("run the consumer" ${WORK_DIR}/with-cmake/consumer)
  expect("consumer built with CMake" "${output}" "${EXPECTED}")
endfunction()

# Asks pkg-config about the installed package, for a list of words.
function(ask_pkg_config variable)
  set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
  run("pkg-config ${ARGN}" pkg-config ${ARGN} tovik_iot)
  string(STRIP "${output}" output)
  separate_arguments(words UNIX_COMMAND "${output}")
  set(${variable} "${words}" PARENT_SCOPE)
endfunction()

function(use_with_pkg_config)
  ask_pkg_config(version --modversion)
  expect("version of the package" "${version}" "1.6.83")
  ask_pkg_config(cflags --cflags)
  ask_pkg_config(libs --libs)
  # Qt itself asks for position independent code; its package files leave that to the user.
  run("compile with pkg-config" ${CXX} ${FLAGS_LIST} -std=c++11 ${cflags}
      ${CONSUMER}/main.cpp -o ${WORK_DIR}/with-pkg-config ${libs})
  run("run the consumer" ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${PREFIX}/${LIBDIR}
      ${WORK_DIR}/with-pkg-config)
  expect("consumer built with pkg-config" "${output}" "${EXPECTED}")
endfunction()

function(compile_each_header)
  ask_pkg_config(cflags --cflags)
  if(CXX MATCHES "clang") # Qt's containers destroy the records, which have no virtual destructor
    list(APPEND cflags -Wno-delete-non-abstract-non-virtual-dtor)
  endif()
  string(REPLACE "," ";" headers "${HEADERS}")
  foreach(header IN LISTS headers)
    file(WRITE ${WORK_DIR}/header.cpp "#include \"${header}\"\n#include \"${header}\"\n")
    run("${header} by itself" ${CXX} -std=c++11 -fPIC -fsyntax-only -Wall -Wextra -Werror
        ${cflags} ${WORK_DIR}/header.cpp)
  endforeach()
endfunction()

install_the_library()
check_the_files()
use_with_cmake()
use_with_pkg_config()
compile_each_header()
file(REMOVE_RECURSE ${WORK_DIR})
