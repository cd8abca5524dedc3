#include "framework/result_code.h"

namespace result_code {

namespace {

const Words of_framework[] = {
    {success, success, "ok"},
    {stopped, stopped, "stopped"},
    {unit_not_served, unit_not_served, "unit not served"},
    {no_answer_in_time, no_answer_in_time, "the device did not answer in time"},
    {receive_failed, receive_failed, "receiving failed"},
    {not_supported, not_supported, "offline: no link to the device, or not supported"},
    {invalid_length, invalid_length,
     "the request could not be built, or the answer had the wrong length"},
    {0, 0, 0},
};

/// The entry of \a table that has \a code; at its end, if there is none.
const Words* find(int code, const Words* table)
{
    while (table->text && (code < table->first || code > table->last))
        ++table;
    return table;
}

} // namespace

QString textOf(int code, const Words* of_driver)
{
    const Words* found = find(code, of_driver ? of_driver : of_framework);
    if (!found->text)
        found = find(code, of_framework);
    const QString text = QString::fromUtf8(found->text);
    if (!found->text || found->first == found->last)
        return text;
    return text + QLatin1Char(' ') + QString::number(qint64(code) - found->first);
}

} // namespace result_code
