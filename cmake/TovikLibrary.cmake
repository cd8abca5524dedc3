# What a host compiles for itself: the declarations through which host and drivers meet.
set(TOVIK_SHARED_SOURCES
  compat/export.h
  compat/serial_port.h
  compat/time_zone.h
  framework/result_code.h framework/result_code.cpp
  interface/addr_data.h
  interface/data_element_group.h
  interface/drv_base.h interface/drv_base.cpp
  interface/drv_ethernet.h interface/drv_ethernet.cpp
  interface/drv_interface.h interface/drv_interface.cpp
  interface/drv_serial.h interface/drv_serial.cpp
  interface/traffic.h interface/traffic.cpp
  property/checked_value.h property/checked_value.cpp
  property/list_stream.h
  property/members.h
  property/property_tovik_iot.h property/property_tovik_iot.cpp
  property/property_tovik_iot_dataitem.h property/property_tovik_iot_dataitem.cpp
  property/property_tovik_iot_group.h property/property_tovik_iot_group.cpp
  property/stream_registration.h property/stream_registration.cpp
  property/value_stream.h property/value_stream.cpp
  property/warning_message.h property/warning_message.cpp)
if(NOT TOVIK_HAS_QEXTSERIALPORT)
  list(APPEND TOVIK_SHARED_SOURCES compat/qext_serial_port.h compat/qext_serial_port.cpp)
endif()

set(TOVIK_CLIENT_SOURCES
  cloud/catalogue.h cloud/catalogue.cpp
  cloud/data_item_type.h cloud/data_item_type.cpp
  cloud/conversation.h cloud/conversation.cpp
  cloud/driver_state.h cloud/driver_state.cpp
  cloud/driver_status.h cloud/driver_status.cpp
  cloud/error_handling.h cloud/error_handling.cpp
  cloud/host_bytes.h
  cloud/json_number.h cloud/json_number.cpp
  cloud/monitor_data_item.h
  cloud/post.h cloud/post.cpp
  cloud/reconnect_timer.h cloud/reconnect_timer.cpp
  cloud/trace/request_trace.h cloud/trace/request_trace.cpp
  cloud/trace/secrets.h cloud/trace/secrets.cpp
  cloud/service_message.h cloud/service_message.cpp
  cloud/tovik_iot.h cloud/tovik_iot.cpp
  cloud/write_queue.h cloud/write_queue.cpp
  compat/cipher_list.h compat/cipher_list.cpp
  compat/new_sockets.h compat/new_sockets.cpp
  compat/prompt_request.h compat/prompt_request.cpp
  compat/session_bytes.h compat/session_bytes.cpp
  compat/text.h compat/text.cpp
  compat/tls_session.h compat/tls_session.cpp
  compat/twos_complement.h
  compat/write_channel.h
  compat/whole_post.h compat/whole_post.cpp)

set(TOVIK_DRIVER_SOURCES
  cloud/drv_tovik_iot.h cloud/drv_tovik_iot.cpp
  framework/driver_basic.h framework/driver_basic.cpp
  framework/element_packing.h framework/element_packing.cpp
  framework/host_request.h framework/host_request.cpp
  framework/link_io.h framework/link_io.cpp
  framework/protocol_basic.h framework/protocol_basic.cpp
  framework/told_traffic.h framework/told_traffic.cpp
  interface/drvlib.h interface/drvlib.cpp)

# The library's sources keep to C++11: the panels' compilers are older than ours.
function(tovik_library_target target)
  tovik_use_qt(${target})
  tovik_warnings(${target})
  tovik_explicit_text(${target})
  target_include_directories(${target} SYSTEM PRIVATE ${PICOJSON_INCLUDE_DIR})
  set(visibility hidden)
  if(TOVIK_SHARE_UNDER_TEST) # the tests reach what is inside
    set(visibility default)
  endif()
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD 11
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET ${visibility}
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# Every source is compiled once, for the library, for hosts, for tovik-host and for tests, which link
# the objects and so reach what the shared library hides.
set(TOVIK_OBJECTS "")
foreach(part IN ITEMS shared client driver)
  string(TOUPPER TOVIK_${part}_SOURCES sources)
  add_library(tovik_${part}_objects OBJECT ${${sources}})
  tovik_library_target(tovik_${part}_objects)
  tovik_precompile(tovik_${part}_objects library
    <QMap> <QMutex> <QObject> <QSharedPointer> <QString> <QStringList> <QTcpSocket> <QVariant>)
  list(APPEND TOVIK_OBJECTS $<TARGET_OBJECTS:tovik_${part}_objects>)
endforeach()

# Counted in the library's objects alone: tools and tests would only be slower for it.
option(TOVIK_COVERAGE "Count the lines and branches of the library that run" OFF)
if(TOVIK_COVERAGE)
  foreach(part IN ITEMS shared client driver)
    target_compile_options(tovik_${part}_objects PRIVATE --coverage -fprofile-update=atomic)
  endforeach()
  add_link_options(--coverage)
endif()

add_library(tovik_iot SHARED)
add_library(Tovik::iot ALIAS tovik_iot)
target_sources(tovik_iot PRIVATE ${TOVIK_OBJECTS})
tovik_use_qt(tovik_iot)
set_target_properties(tovik_iot PROPERTIES
  AUTOMOC OFF
  EXPORT_NAME iot
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map)
# What is exported stands in exports.map alone. The library stays mapped after dlclose: Qt keeps
# functions of it (meta-types, their stream operators) for as long as the process lives.
target_link_options(tovik_iot PRIVATE
  LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map
  ${TOVIK_ALL_DEFINED} LINKER:-z,nodelete)

# What a host is built from: the tools and the system tests load the driver with dlopen.
add_library(tovik_host_side STATIC $<TARGET_OBJECTS:tovik_shared_objects>)

# The client alone, for tovik-host's look at a service: the same code that the driver runs.
add_library(tovik_cloud_client STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:tovik_client_objects>)
foreach(target IN ITEMS tovik_host_side tovik_cloud_client)
  tovik_use_qt(${target})
  set_target_properties(${target} PROPERTIES AUTOMOC OFF LINKER_LANGUAGE CXX)
endforeach()
target_link_libraries(tovik_cloud_client PUBLIC tovik_host_side)
