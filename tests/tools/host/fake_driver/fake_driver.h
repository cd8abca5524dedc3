#ifndef TESTS_TOOLS_HOST_FAKE_DRIVER_FAKE_DRIVER_H
#define TESTS_TOOLS_HOST_FAKE_DRIVER_FAKE_DRIVER_H

#include "interface/drv_ethernet.h"
#include "interface/drv_interface.h"
#include "property/property_tovik_iot.h"

#include <QMap>
#include <QStringList>
#include <QTimer>

/// A driver without a service, which plays what the configuration tells it.
///
/// The project name says how connecting goes:
///   "plant"        the driver connects after a moment
///   "slow"         it never does, and reports no error
///   "refused"      the service refuses the login with error 1
///   "unreachable"  the service cannot be reached
///   "late"         the service cannot be reached at first; then the driver connects
///   "stalls"       after its first cycle the service hangs a while: values age by 2 s a cycle
///   "mute"         no request is answered
///   "older"        the driver tells neither of its connection nor of writes or ages
///
/// An item's id says what the service has for it; cycles walk along the values:
///   "hex:4600/4700"  these bytes
///   "ro:4600"        the same, but a write fails with error 8
///   "forgets:4600"   a write is done, but changes nothing
///   "garbled:4600"   a write fails with status 0x400F0256
///   "oddcode:4600"   a write fails with a code that leaves the status as it is
///   "lost:4600"      a write is neither done nor failing
///   "keep"           something that is no value of the type: the cache stays as it is
///   "bad"            error 7, which ends the cycle
class FakeDriver : public DrvInterface
{
    Q_OBJECT

public:
    explicit FakeDriver(DrvEthernet* link);
    ~FakeDriver() override;

private Q_SLOTS:
    void onRead(QString unit, QString link, int station, QSharedPointer<AddrData> address);
    void onWrite(QString unit, QString link, int station, const QByteArray& bytes,
                 QSharedPointer<AddrData> address);
    void onRelease();
    void connectOnce();
    void cycle();

private:
    struct Item
    {
        QString id;
        QByteArray cached;
        bool has_value;
    };

    void tell(const char* property, const QVariant& value);
    void tellAges();
    void finishWrite(const QString& id, const QByteArray& bytes);

    PropertyTovikIot property_;
    QMap<QString, Item> items_;
    QTimer connect_timer_;
    QTimer cycle_timer_;
    int status_ = 0;
    int attempts_ = 0;
    int cycles_ = 0;
    int whole_cycles_ = 0;
    bool released_ = false;
    uint write_count_ = 0;
    uint failed_write_count_ = 0;
};

#endif
