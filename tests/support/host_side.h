#ifndef TESTS_SUPPORT_HOST_SIDE_H
#define TESTS_SUPPORT_HOST_SIDE_H

#include "interface/drv_interface.h"

#include <QList>
#include <QPointer>

class DrvEthernet;

/// One answer of a driver.
struct DriverAnswer
{
    QString unit_name;
    QString link_name;
    QByteArray bytes;
    int status;
};

/// What a host does with a driver, whoever made it: raises requests and takes the answers.
class HostSide : public QObject
{
    Q_OBJECT

public:
    /// Takes the answers of \a driver (not owned).
    void attach(DrvInterface* driver);

    /// Raises one request and returns its answer. Unless it is answered exactly once, before the
    /// emission returns, the status is -1.
    DriverAnswer read(const QString& name, int data_length = 0);
    DriverAnswer write(const QString& name, const QByteArray& bytes);

    /// All answers so far, wanted or not.
    int answerCount() const;

    /// Stores the five error-handling settings in a link.
    static void setErrorHandling(DrvEthernet* link, int type, int return_time, bool return_time_en,
                                 bool restore_switch_en);

private Q_SLOTS:
    void onResponse(QString unit_name, QString link_name, QByteArray ba, int status);

private:
    DriverAnswer onlyAnswer() const;

    QPointer<DrvInterface> driver_;
    QList<DriverAnswer> answers_;
    int answer_count_ = 0;
};

#endif
