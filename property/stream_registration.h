#ifndef PROPERTY_STREAM_REGISTRATION_H
#define PROPERTY_STREAM_REGISTRATION_H

/// Makes `PropertyTovikIot` known to Qt (once in the process) together with its stream operators
/// (again on every call, which is harmless), so that a variant holding one can be streamed.
///
/// The element operators call it before they stream; the root's own operators do not.
void RegisterConfigurationStreaming();

#endif
