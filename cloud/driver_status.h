#ifndef CLOUD_DRIVER_STATUS_H
#define CLOUD_DRIVER_STATUS_H

/// The status that the host sees for a result of the client.
namespace driver_status {

/// 0x400F0000 plus the result's decimal digits read as hexadecimal ones (15 gives 0x400F0015), for
/// the results 1, 3, 4, 7, 8, 9, 15, 255 and 256; 0 for any other.
int fromResult(int result);

} // namespace driver_status

#endif
