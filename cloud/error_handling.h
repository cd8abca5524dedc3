#ifndef CLOUD_ERROR_HANDLING_H
#define CLOUD_ERROR_HANDLING_H

class DrvBase;

/// The host's settings for what follows a failure, and every question that is asked of them.
///
/// | Type   | Reconnects                                                                |
/// |--------|---------------------------------------------------------------------------|
/// | 0, 2   | by a timer, every second                                                  |
/// | 1      | by a timer, every `return_time` seconds, with `return_time_en`; else by   |
/// |        | the host's reads, with `restore_switch_bs_en`; else never                 |
/// | 3      | by the host's reads                                                       |
/// | others | never                                                                     |
struct ErrorHandling
{
    /// As \a link has them; a setting that the host has not made is 0 or false.
    static ErrorHandling of(DrvBase* link);

    bool reconnectsByTimer() const;
    bool reconnectsByReads() const;
    /// Milliseconds between two attempts of the timer, at most what an int holds.
    int interval() const;

    int type = 1;
    int return_time = 1; ///< Seconds.
    int retry_count = 2; ///< Carried; nobody asks for it.
    bool return_time_en = true;
    bool restore_switch_bs_en = true;
};

#endif
