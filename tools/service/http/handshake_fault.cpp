#include "tools/service/http/handshake_fault.h"

namespace tovik_service::http {

HandshakePlan planHandshake(faults::FaultTable& faults, EventLog& log, bool is_resumption)
{
    HandshakePlan plan;
    const faults::FaultPointer fault = faults.takeForHandshake({is_resumption});
    if (!fault)
        return plan;
    log.note("handshake: fault " + std::to_string(fault->id) + " applied, " + fault->spec.text);
    const faults::FaultKind kind = fault->spec.kind();
    if (kind == faults::FaultKind::WrongHost)
        plan.certificate = CertificateChoice::WrongHost;
    if (kind == faults::FaultKind::Expired)
        plan.certificate = CertificateChoice::Expired;
    plan.forgets_sessions = kind == faults::FaultKind::TicketsLost;
    plan.offers_sessions = kind != faults::FaultKind::NoTickets;
    plan.closes = kind == faults::FaultKind::ResumeClose;
    plan.resets = kind == faults::FaultKind::ResumeReset;
    if (kind == faults::FaultKind::TlsVersion)
        plan.version = fault->spec.version;
    return plan;
}

} // namespace tovik_service::http
