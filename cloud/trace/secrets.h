#ifndef CLOUD_TRACE_SECRETS_H
#define CLOUD_TRACE_SECRETS_H

#include <QByteArray>
#include <QList>

/// \file
/// Passwords and tokens in the bodies of requests and replies, which nobody is to see who looks at
/// the traffic. The bodies need not be JSON: a reply that is damaged is the one that is looked at.
namespace secrets {

/// The values of all members "password" and "token" in \a body, as they stand there, without
/// quotation marks.
QList<QByteArray> in(const QByteArray& body);

/// \a body with asterisks in place of such values, and of every one of \a known, wherever it is.
QByteArray blotted(const QByteArray& body, const QList<QByteArray>& known = QList<QByteArray>());

} // namespace secrets

#endif
