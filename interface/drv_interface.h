#ifndef INTERFACE_DRV_INTERFACE_H
#define INTERFACE_DRV_INTERFACE_H

#include "compat/export.h"
#include "interface/addr_data.h"
#include "interface/data_element_group.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

/// The driver as the host sees it.
///
/// The host raises a request by emitting a request signal (`SigGetValuesByteArray`,
/// `SigSetValuesByteArray`) on the driver object; the driver answers with `SigResponse`. Host and
/// driver meet by the signals' normalised texts and indices, and by the order of the virtual
/// operations: names, parameters and order must not change.
///
/// Connect to `SigTovikResponse` and `SigTovikInternalCmd` with the types as they are declared: Qt
/// 4 records `unsigned char` and `unsigned short` where Qt 5 records `uchar` and `ushort`.
///
/// All signals are emitted in the thread of the driver object.
class TOVIK_EXPORT DrvInterface : public QObject
{
    Q_OBJECT

public:
    /// Without units and with `stop_flag` 0. Call it in the thread in which the driver is to live.
    explicit DrvInterface(QObject* parent = 0);
    /// Through a pointer to DrvInterface the whole driver is deleted, in the driver's thread.
    ~DrvInterface();

    /// Whether `RunTransparentRequest` is of use. Default: false.
    virtual bool IsTransparentModeSupported();
    /// Passes \a request to the device unchanged; the answer comes by `SigTransparentResponse`.
    /// Default: does nothing and answers nothing.
    virtual void RunTransparentRequest(const QByteArray& request);

    /// The host's list of unit names; null until the host sets it. Not owned.
    QStringList* unit_list;
    /// The unit of the request that is being served, written by protocol drivers.
    QString current_unit_name;
    /// Set by the host to stop a running request. Only the first byte counts: non-zero stops.
    quintptr stop_flag;

Q_SIGNALS:
#ifndef Q_MOC_RUN
public: // In Qt 4 signals are protected otherwise, and a host emits these.
#endif

    /// Answers one read or write: \a ba is the data read, or the bytes that were to be written;
    /// \a status is 0 for success or a code of the driver.
    void SigResponse(QString unit_name, QString link_name, QByteArray ba, int status);
    /// Reports data that nobody asked for.
    void SigEventResponse(QString link_name, QMap<QString, QByteArray> type_data, int result);
    /// Request: write \a ba to the data that \a addr names.
    void SigSetValuesByteArray(QString unit_name, QString link_name, int station_no,
                               const QByteArray& ba, QSharedPointer<AddrData> addr);
    /// Request: read the data that \a addr names.
    void SigGetValuesByteArray(QString unit_name, QString link_name, int station_no,
                               QSharedPointer<AddrData> addr);
    /// The host changed the settings of the serial link.
    void SigUpdateDrvSerial();
    /// The host changed the settings of the TCP link.
    void SigUpdateDrvEthernet();
    /// Request: read several elements at once.
    void SigGetValuesByteArrayMix(QString unit_name, QString link_name, int station_no,
                                  QList<DataElementGroup> map);
    /// Answers an internal command.
    void SigTovikResponse(unsigned char cmd, const QByteArray& ba, int status);
    /// Request: an internal command of the host.
    void SigTovikInternalCmd(unsigned char cmd, int station_no, unsigned short key_code,
                             const QByteArray& i_ba);
    /// Answers `RunTransparentRequest`.
    void SigTransparentResponse(const QByteArray& ba, int status);
};

#endif
