#ifndef TESTS_FRAMEWORK_TEST_DRIVER_H
#define TESTS_FRAMEWORK_TEST_DRIVER_H

#include "framework/driver_basic.h"

#include <QStringList>

#include <functional>

/// A driver of ScriptedDevice's protocol that records how its hooks are called. Each hook can be
/// replaced.
class TestDriver : public DriverBasic
{
public:
    /// What response_parse() returns for an answer to another request.
    static const int wrong_answer = 0x30000001;

    using DriverBasic::isLinkLost;
    using DriverBasic::pauseThread;
    using DriverBasic::stopRequested;
    using DriverBasic::takeInput;
    using DriverBasic::waitForBytes;
    using DriverBasic::waitForLine;
    using DriverBasic::waitForLinkInput;

    explicit TestDriver(DrvSerial* serial, DrvEthernet* ethernet = nullptr);

    int request_build(E_CMD_DIR dir, QString address, int field1, int data_length, QByteArray* data,
                      QByteArray* request, int station_no, int extra1, int extra2) override;
    int response_parse(E_CMD_DIR dir, QString address, int field1, int data_length,
                       QByteArray* data, QByteArray* request, QByteArray* response, int station_no,
                       int extra1, int extra2) override;
    void doCmdSM_Offline(E_CMD_DIR dir, QString address, int field1, int data_length,
                         QByteArray* data, int station_no, int extra1, int extra2) override;
    int recv_abnormal_handler(QByteArray* response) override;
    int request_send_wait(int sent_length, int expected_length, int* ready) override;
    void UpdateSerialParameter() override;

    /// Waits on the link for \a size bytes, at most about `time_limit`. A connection that is lost
    /// ends the wait.
    bool waitForSize(int size) const;

    /// The hooks' calls in order, with all arguments; bytes in hex, "-" for none.
    QStringList takeCalls();
    /// How often a hook has been called whose record begins so.
    int countCalls(const char* beginning) const;

    /// The number of the latest request.
    int number() const { return number_; }

    std::function<int(QByteArray* data, QByteArray* request)> on_build;
    std::function<int(QByteArray* data)> on_parse;
    std::function<void(QByteArray* data)> on_offline;
    std::function<int(QByteArray* response)> on_abnormal;
    std::function<int(int expected_length, int* ready)> on_wait;

    /// Longest wait for an answer in milliseconds; long, for tests that expect one.
    int time_limit;
    /// Bytes that are waited for in place of those that were announced, if not 0.
    int waits_for;

private:
    bool isLinkUp() const;
    /// Whether that is why the latest wait on the link has ended.
    bool hasTimedOut() const;

    QStringList calls_;
    int number_;
};

/// Bytes as the tests write them: hex, "-" for none.
QString bytesText(const QByteArray& bytes);

/// The answers of a driver in order: "unit link bytes code", or "transparent bytes code".
class Answers : public QObject
{
    Q_OBJECT

public:
    explicit Answers(DrvInterface* driver);

    QStringList take();
    int count() const { return lines_.size(); }

private Q_SLOTS:
    void onResponse(QString unit_name, QString link_name, QByteArray ba, int status);
    void onTransparentResponse(const QByteArray& ba, int status);

private:
    QStringList lines_;
};

#endif
