#ifndef TOOLS_HOST_CLOUD_OUTCOME_H
#define TOOLS_HOST_CLOUD_OUTCOME_H

#include <QString>
#include <QStringList>

namespace tovik_host {

/// How one step of a conversation with the service ended.
struct ClientOutcome
{
    enum Kind
    {
        Done,
        Failed,     ///< The service refused, or could not be reached.
        TimedOut,   ///< Given up after the time.
        BadReply,   ///< A reply came and was not what the service's interface says.
        Interrupted ///< CloudClient::interrupt() was called.
    };

    Kind kind = Done;
    int result = 0;     ///< 0, 256 (found by the client), or the service's own code.
    double seconds = 0; ///< How long the step took.
    /// For the user, without secrets: the service's code, the network's words, or what was wrong
    /// with the reply. Empty when all is well.
    QString reason = QString();
};

/// Kind and reason of a step that has come to its end.
/// \param result the client's result; it has none when it has \a raised an exception.
/// \param lines the client's debug lines of the step, where the cause of a failure stands.
ClientOutcome judgeStep(int result, bool raised, const QStringList& lines);

/// \a text without user name and password of the address \a url, which Qt quotes in its messages.
QString withoutUserInfo(const QString& text, const QString& url);

} // namespace tovik_host

#endif
