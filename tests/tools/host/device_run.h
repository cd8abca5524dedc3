#ifndef TESTS_TOOLS_HOST_DEVICE_RUN_H
#define TESTS_TOOLS_HOST_DEVICE_RUN_H

#include "tests/support/host_process.h"
#include "tests/tools/host/line_device.h"

/// \file
/// The program on a device that lives in the test: the test's event loop runs while it waits.

/// \a arguments with the device's link and driver and, unless they have a time of their own, with
/// all the time that a slow machine may take for an answer.
QStringList onDevice(const QStringList& arguments, const LineDevice& device);
/// Waits for the end of the program and returns its exit code, or -1.
int waitForEnd(HostProcess& host);
/// Runs the program with exactly these arguments.
int runOnly(HostProcess& host, const QStringList& arguments);
/// Runs the program on the device.
int runOn(HostProcess& host, const LineDevice& device, const QStringList& arguments);
/// Waits until the standard output contains \a text.
bool waitForText(HostProcess& host, const QString& text);
/// Words separated by single blanks.
QStringList words(const char* text);

#endif
