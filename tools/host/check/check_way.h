#ifndef TOOLS_HOST_CHECK_CHECK_WAY_H
#define TOOLS_HOST_CHECK_CHECK_WAY_H

#include "tools/host/check/check_step.h"
#include "tools/host/check/probe_facts.h"
#include "tools/host/config/config.h"

#include <QDateTime>

/// \file
/// What the facts of the way to a service mean. Facts in, judged steps out.
namespace tovik_host::check {

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

} // namespace tovik_host::check

#endif
