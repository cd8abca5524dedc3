#ifndef TESTS_TWIN_TWIN_H
#define TESTS_TWIN_TWIN_H

class ServiceUnderControl;

/// \file
/// The parts of the twin program, each of which prints its part of the transcript.

/// Every type of data item, a few hundred values each, through its four conversions.
void twinConversions();
/// Every helper of ProtocolBasic.
void twinProtocol();
/// The configuration, written and read in each stream version and byte order, and cut anywhere.
void twinConfiguration();
/// Methods and properties of the classes that hosts and driver authors connect to.
void twinShapes();
/// The client's operations and the driver, at a service that is made to go wrong.
void twinClient(ServiceUnderControl& service);
/// A driver on the framework, on a TCP connection and on a serial line.
void twinFramework();

#endif
