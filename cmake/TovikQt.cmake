# Finds Qt and the serial port: sets TOVIK_QT_LIBRARIES and TOVIK_HAS_QEXTSERIALPORT.
find_path(QEXTSERIALPORT_INCLUDE_DIR qextserialport.h
          PATH_SUFFIXES QtExtSerialPort qextserialport)
find_library(QEXTSERIALPORT_LIBRARY NAMES qextserialport QtExtSerialPort qextserialport-1.2)
set(TOVIK_HAS_QEXTSERIALPORT OFF)
if(QEXTSERIALPORT_INCLUDE_DIR AND QEXTSERIALPORT_LIBRARY)
  set(TOVIK_HAS_QEXTSERIALPORT ON)
endif()

if(TOVIK_QT EQUAL 4)
  find_package(Qt4 4.8 REQUIRED QtCore QtNetwork QtGui)
  set(TOVIK_QT_LIBRARIES Qt4::QtCore Qt4::QtNetwork Qt4::QtGui)
  if(NOT TOVIK_HAS_QEXTSERIALPORT)
    message(FATAL_ERROR
      "Qt 4 has no serial port module: install the qextserialport library, or name it with "
      "-DQEXTSERIALPORT_INCLUDE_DIR=DIR -DQEXTSERIALPORT_LIBRARY=FILE")
  endif()
elseif(TOVIK_QT EQUAL 5)
  find_package(Qt5 5.15 REQUIRED COMPONENTS Core Network Widgets)
  set(TOVIK_QT_LIBRARIES Qt5::Core Qt5::Network Qt5::Widgets)
  if(NOT TOVIK_HAS_QEXTSERIALPORT)
    find_package(Qt5 5.15 REQUIRED COMPONENTS SerialPort)
  endif()
  if(TOVIK_TESTS)
    find_package(Qt5 5.15 REQUIRED COMPONENTS Test)
  endif()
else()
  message(FATAL_ERROR "TOVIK_QT is ${TOVIK_QT}: say 4 or 5")
endif()

find_path(PICOJSON_INCLUDE_DIR picojson.h REQUIRED)

# Gives a target what every user of the interface headers needs.
function(tovik_use_qt target)
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  target_link_libraries(${target} PUBLIC ${TOVIK_QT_LIBRARIES})
  if(TOVIK_HAS_QEXTSERIALPORT)
    target_compile_definitions(${target} PUBLIC TOVIK_HAS_QEXTSERIALPORT)
    target_include_directories(${target} SYSTEM PUBLIC ${QEXTSERIALPORT_INCLUDE_DIR})
    target_link_libraries(${target} PUBLIC ${QEXTSERIALPORT_LIBRARY})
  else()
    target_link_libraries(${target} PRIVATE Qt5::SerialPort)
  endif()
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  if(TOVIK_QT EQUAL 5)
    # Queued work is written with string-based connections and foreach-free loops, as in Qt 4.8.
    target_compile_definitions(${target} PRIVATE QT_NO_FOREACH)
  endif()
endfunction()
