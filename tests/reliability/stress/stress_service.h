#ifndef TESTS_RELIABILITY_STRESS_STRESS_SERVICE_H
#define TESTS_RELIABILITY_STRESS_STRESS_SERVICE_H

#include "tests/reliability/stress/stamped_value.h"
#include "tests/support/scripted_service.h"

#include <QHash>
#include <QThread>

#include <atomic>
#include <memory>
#include <random>

class Ledger;

/// A fast service in a thread of its own: takes every account, keeps what is written, and lets a
/// request fail now and then. Accounts are "driver-N", so that it knows who asks.
class StressService
{
public:
    struct Settings
    {
        bool is_tls = false;
        quint32 seed = 1;
        int items = 1;
        /// So many of a thousand requests fail.
        int faults_per_mille = 0;
    };

    StressService(const Settings& settings, Ledger* ledger);
    ~StressService();

    QString url() const { return url_; }
    /// Whether a request for a value has been answered.
    bool hasGivenValue() const { return has_given_value_; }

    /// The items that it has, by number.
    static QByteArray idOf(int item);
    static stamped::Kind kindOf(int item);
    /// How the ledger knows a write.
    static QByteArray keyOf(const QByteArray& id, qint64 stamp);

private:
    ScriptedReply reply(const ScriptedRequest& request);
    ScriptedReply fault();
    ScriptedReply value(const QByteArray& id);
    ScriptedReply write(const QByteArray& id, const nlohmann::json& value);

    Ledger* ledger_;
    int faults_per_mille_;
    std::minstd_rand random_;
    QHash<QByteArray, int> item_of_id_;
    QHash<QByteArray, qint64> stamps_;
    QString url_;
    std::atomic<bool> has_given_value_{false};
    std::unique_ptr<QThread> thread_;
};

#endif
