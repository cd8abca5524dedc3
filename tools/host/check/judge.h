#ifndef TOOLS_HOST_CHECK_JUDGE_H
#define TOOLS_HOST_CHECK_JUDGE_H

#include "tools/host/check/probe.h"
#include "tools/host/config/config.h"
#include "tools/host/driver/device_config.h"
#include "tools/host/service/catalogue.h"
#include "tools/host/service/cloud_client.h"
#include "tools/host/terminal/context.h"
#include "tools/host/value/json_text.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <optional>

/// \file
/// What the facts of the way to a service, its answers and those of a device mean. Facts in, judged
/// steps out, and a verdict on all of them.
namespace tovik_host::check {

/// What a step of a check says about the way that a value takes.
enum class Severity
{
    ok,
    warning,  ///< Values come through, and still something should be known.
    failure,  ///< No value comes through, or one item's does not.
    not_tried ///< A step before it has failed.
};

/// One step of the way, judged.
struct CheckStep
{
    QString name;    ///< Of the step: "name", "connect", "tls", "login" and so on.
    QString subject; ///< What it is about, where there are several: an address, an item.
    Severity severity = Severity::ok;
    QString text;                  ///< What was found.
    QString cause = QString();     ///< The same for the verdict, where the text says more besides.
    QString advice = QString();    ///< What to do about it; empty when all is well.
    std::optional<double> seconds; ///< How long it took, where it is something that takes time.
    /// What was found, for programs; an object.
    value::OrderedJson facts = value::OrderedJson::object();

    /// Says what was found, and what to do about it.
    void find(Severity how, const QString& what, const QString& what_to_do = QString())
    {
        severity = how;
        text = what;
        advice = what_to_do;
    }
};

using CheckSteps = QVector<CheckStep>;

inline CheckStep makeStep(const char* name, Severity severity = Severity::ok,
                          const QString& text = QString(), const QString& advice = QString())
{
    CheckStep step;
    step.name = QString::fromLatin1(name);
    step.find(severity, text, advice);
    return step;
}

struct Cause
{
    QString found;
    QString advice; ///< What to do about it; may be empty.
};

struct Verdict
{
    bool is_well = true;   ///< Every value that was looked at arrives.
    QString summary;       ///< One sentence.
    QVector<Cause> causes; ///< The failures, then the warnings; the first cause first.
};

/// \param is_interrupted whether a signal ended the check before its end
Verdict judgeAll(const CheckSteps& steps, bool is_interrupted);

/// Tells the verdict, as lines or as one object with \a as_json, and gives the exit code.
int tellVerdict(terminal::Streams& streams, const Verdict& verdict, bool as_json);

/// One line for a step, or one object with \a as_json.
QString stepLine(const CheckStep& step, bool as_json);
/// The verdict as lines, or as one object.
QStringList verdictLines(const Verdict& verdict, bool as_json);

/// Whether and how the driver comes back after an error.
CheckStep judgeErrorHandling(const config::ErrorHandling& settings);
/// Whether the TLS library that was found fits this Qt.
CheckStep judgeSslLibrary(const SslLibraryFacts& facts);
/// A proxy that is in force.
CheckStep judgeProxy(const ProxyFacts& facts);
/// \param timeout in seconds, here and below
CheckStep judgeName(const NameFacts& facts, double timeout);
/// One step for every address. An address that does not answer is a failure when none does, and a
/// warning else.
CheckSteps judgeConnections(const QVector<ConnectFacts>& facts, double timeout);
/// The handshake with an https address.
CheckStep judgeHandshake(const TlsFacts& facts, double timeout);
/// Whether the driver's later connections resume the TLS session of the first.
CheckStep judgeResumption(bool is_resumed);
/// The certificate of a handshake, with one that a client that verifies would refuse as a warning:
/// the driver does not verify.
CheckStep judgeCertificate(const CertificateFacts& facts, const QDateTime& now);
/// The first words with an http address.
CheckStep judgePlainHttp(const TlsFacts& facts, double timeout);

/// All items of a catalogue, by their ids.
using CatalogueItems = QHash<QString, service::OfferedItem>;
CatalogueItems itemsOf(const QList<PropertyTovikIotGroup>& groups);

/// What was found out about one served item.
struct ItemFinding
{
    config::ItemConfig item;
    bool is_read = false;           ///< Whether it was asked for at all.
    service::ClientOutcome outcome; ///< Of the read; Done with a reason: of another JSON type.
    QVariant value;                 ///< Invalid: none, or none of the item's type.
    bool is_known = false;          ///< The catalogue has the item.
    QString catalogue_type;         ///< Its type there.
    QString suggestion; ///< In words, what else may be meant by an id that is not known.
};

/// What the catalogue says about \a item, before it is read.
ItemFinding lookUpItem(const config::ItemConfig& item, const CatalogueItems& catalogue);

/// A login, or the loading of the catalogue, that has failed or not.
/// \param name of the step
CheckStep judgeConversation(const char* name, const service::ClientOutcome& outcome);
CheckStep judgeCatalogue(const service::ClientOutcome& outcome,
                         const QList<PropertyTovikIotGroup>& groups);
/// One served item: whether it is known, of which type it is, and what a read gave.
CheckStep judgeItem(const ItemFinding& finding);
/// What the driver's cycle comes to, given its items in the order of the configuration: how long it
/// takes, how old values get, and which item ends it before its end.
/// \param is_complete whether all served items are there
CheckStep judgeCycle(const QVector<ItemFinding>& findings, bool is_complete);

/// What became of one read of a device.
struct LinkRead
{
    config::ItemConfig item;
    bool is_tried = false;
    bool has_sent = false;     ///< Something was sent at all.
    int bytes = 0;             ///< That came for an answer.
    int stray_bytes = 0;       ///< That had come before, and were thrown away.
    double seconds = 0;        ///< From the request to the last byte; 0: none came.
    int status = 0;            ///< The driver's.
    QString problem;           ///< Why there is no value; empty if there is one.
    QString value = QString(); ///< The value in words.

    bool isGood() const { return is_tried && problem.isEmpty(); }
    bool hasAnswer() const { return bytes > 0; }
};

/// Opening the link.
/// \param problem why it is not open; empty if it is
CheckStep judgeOpening(const driver::DeviceConfig& config, const QString& problem, double seconds);
/// How the link is set; on a serial line also what its speed comes to.
CheckStep judgeLineSettings(const driver::DeviceConfig& config);
/// Whether any byte comes back at all.
CheckStep judgeAnyAnswer(const driver::DeviceConfig& config, const QVector<LinkRead>& reads);
/// Whether what comes back are answers of the stations that were asked.
CheckStep judgeStation(const QVector<LinkRead>& reads);
CheckStep judgeLinkItem(const LinkRead& read);
/// How long answers take, against how long the driver waits for them.
/// \param reads with an answer
CheckStep judgeTimes(const driver::DeviceConfig& config, const QVector<LinkRead>& reads);

} // namespace tovik_host::check

#endif
