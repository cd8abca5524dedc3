#ifndef FRAMEWORK_RESULT_CODE_H
#define FRAMEWORK_RESULT_CODE_H

#include "compat/export.h"

#include <QString>

/// \file
/// The result codes of drivers on the framework, and words for them.
///
/// A driver library may bring words for codes of its own: it defines drv_result_codes(), which a
/// host finds by `dlsym` as it finds the entry points.
///
/// \code
/// const result_code::Words* drv_result_codes()
/// {
///     static const result_code::Words words[] = {
///         {0x4F000001, 0x4F000001, "no such register"},
///         {0x4F010000, 0x4F01FFFF, "the device refuses with code"},
///         {0, 0, 0}};
///     return words;
/// }
/// \endcode
/// A host then says "no such register" for 0x4F000001 and "the device refuses with code 2" for
/// 0x4F010002.
namespace result_code {

/// The device answered, and the driver understood it.
const int success = 0;
/// The host's stop flag was set.
const int stopped = 0x1002;
/// The unit of the request is not in the host's unit list.
const int unit_not_served = 0x2002;
/// The device did not answer in time.
const int no_answer_in_time = 0x400A0000;
/// Receiving failed; also what the receive hooks return unless overridden.
const int receive_failed = 0x400A0002;
/// Transparent mode without a link, or an element size that is none. Hosts use it for a link that
/// is not open.
const int not_supported = 0x400CFFFF;
/// The request could not be built, or the answer had the wrong length.
const int invalid_length = 0x20010003;

/// Words for the codes \a first to \a last. Where these are more than one, the code's place among
/// them is said after the words, counted from 0.
struct Words
{
    int first;        ///< The only code, or the first of many.
    int last;         ///< The last of them.
    const char* text; ///< UTF-8; null after the last entry of a table.
};

/// \a code in words: those of the first entry of \a of_driver that has it, else the framework's.
/// Empty if nobody has words for it. May be called in any thread.
TOVIK_EXPORT QString textOf(int code, const Words* of_driver = 0);

} // namespace result_code

extern "C" {

/// The words of a driver library, which defines this or leaves it out: a table, which stays as long
/// as the library, or null.
TOVIK_EXPORT const result_code::Words* drv_result_codes();
}

#endif
