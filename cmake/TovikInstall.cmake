# What `cmake --install` puts in place, by component: library; development (headers, a CMake package,
# a pkg-config file); tools (the programs, with all that makes them at home on a machine); modbus (the
# Modbus driver); documentation. The Debian packages in packaging/debian are these components.
include(CMakePackageConfigHelpers)

set(TOVIK_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/tovik)
set(TOVIK_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/TovikIot)

set(TOVIK_PUBLIC_HEADERS
  compat/export.h
  compat/serial_port.h
  framework/driver_basic.h
  framework/protocol_basic.h
  framework/result_code.h
  interface/addr_data.h
  interface/data_element_group.h
  interface/drv_base.h
  interface/drv_ethernet.h
  interface/drv_interface.h
  interface/drv_serial.h
  interface/drvlib.h
  interface/traffic.h
  property/property_tovik_iot.h
  property/property_tovik_iot_dataitem.h
  property/property_tovik_iot_group.h
  property/warning_message.h)
if(NOT TOVIK_HAS_QEXTSERIALPORT)
  list(APPEND TOVIK_PUBLIC_HEADERS compat/qext_serial_port.h)
endif()
foreach(header IN LISTS TOVIK_PUBLIC_HEADERS)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${TOVIK_INCLUDE_DIR}/${folder} COMPONENT development)
endforeach()

target_include_directories(tovik_iot INTERFACE $<INSTALL_INTERFACE:${TOVIK_INCLUDE_DIR}>)
install(TARGETS tovik_iot EXPORT TovikIotTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
          NAMELINK_COMPONENT development)
install(EXPORT TovikIotTargets NAMESPACE Tovik:: DESTINATION ${TOVIK_CMAKE_DIR}
        COMPONENT development)

configure_package_config_file(cmake/TovikIotConfig.cmake.in
  ${PROJECT_BINARY_DIR}/TovikIotConfig.cmake
  INSTALL_DESTINATION ${TOVIK_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TovikIotConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TovikIotConfig.cmake
              ${PROJECT_BINARY_DIR}/TovikIotConfigVersion.cmake
        DESTINATION ${TOVIK_CMAKE_DIR} COMPONENT development)

if(TOVIK_QT EQUAL 4)
  set(TOVIK_PC_REQUIRES "QtCore >= 4.8 QtNetwork >= 4.8 QtGui >= 4.8")
else()
  set(TOVIK_PC_REQUIRES "Qt5Core >= 5.15 Qt5Network >= 5.15 Qt5Widgets >= 5.15")
endif()
set(TOVIK_PC_CFLAGS "")
set(TOVIK_PC_LIBS "")
if(TOVIK_HAS_QEXTSERIALPORT)
  # A driver calls the port's own functions.
  set(TOVIK_PC_LIBS "${QEXTSERIALPORT_LIBRARY}")
  set(TOVIK_PC_CFLAGS "-DTOVIK_HAS_QEXTSERIALPORT -I${QEXTSERIALPORT_INCLUDE_DIR}")
endif()
# From the file's own folder: an installed tree may be moved, and --prefix may name another one.
file(RELATIVE_PATH TOVIK_PC_PREFIX /x/${CMAKE_INSTALL_LIBDIR}/pkgconfig /x)
configure_file(cmake/tovik_iot.pc.in ${PROJECT_BINARY_DIR}/tovik_iot.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tovik_iot.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
install(FILES packaging/man/libtovik-iot.7
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man7 COMPONENT development)

if(TOVIK_TOOLS)
  set(TOVIK_PLANT ${CMAKE_INSTALL_FULL_DATADIR}/tovik/examples/plant/plant.json)
  configure_file(packaging/systemd/tovik-cloud.service.in
                 ${PROJECT_BINARY_DIR}/tovik-cloud.service @ONLY)
  set(TOVIK_UNIT_DIR lib/systemd/system CACHE PATH "Where systemd looks for units")
  install(FILES ${PROJECT_BINARY_DIR}/tovik-cloud.service
          DESTINATION ${TOVIK_UNIT_DIR} COMPONENT tools)
  install(FILES packaging/man/tovik-cloud.1 packaging/man/tovik-host.1
          DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  foreach(program IN ITEMS tovik-cloud tovik-host) # bash looks for a file of the program's name
    install(FILES packaging/completion/tovik.bash RENAME ${program}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools)
  endforeach()
endif()

# The guides refer to each other and to their images by relative paths, and to README.md above them.
install(DIRECTORY docs
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation FILES_MATCHING
        PATTERN "*.md" PATTERN "*.png" PATTERN "doxygen" EXCLUDE)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
