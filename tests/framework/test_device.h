#ifndef TESTS_FRAMEWORK_TEST_DEVICE_H
#define TESTS_FRAMEWORK_TEST_DEVICE_H

#include "tests/support/scripted_device.h"

#include <QStringList>

/// A device that speaks a protocol made for the tests. A request is four bytes: `Q`, two bytes of
/// request number, the number of bytes wanted; or `W`, two bytes of request number, one byte to be
/// written. The answer is `A`, the request number, and the bytes wanted, or the byte that was
/// written.
class TestDevice : public ScriptedDevice
{
public:
    static const int request_size = 4;

    /// It answers as it should.
    explicit TestDevice(Line line);

    /// What stands in the answer to a read.
    static QByteArray valuesOf(int number, int size);
    /// The answer that a good device gives.
    static QByteArray answerTo(const QByteArray& request);

    /// How the coming requests are treated, in order; the last behaviour goes for all that follow.
    /// Names: "answers", "silent", "late" (when released), "byte by byte", "too short",
    /// "too long", "two replies in one", "closes in mid-reply", "endless".
    void behave(const QStringList& names);
};

#endif
