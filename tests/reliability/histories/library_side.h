#ifndef TESTS_RELIABILITY_HISTORIES_LIBRARY_SIDE_H
#define TESTS_RELIABILITY_HISTORIES_LIBRARY_SIDE_H

#include "cloud/drv_tovik_iot.h"
#include "interface/drv_ethernet.h"
#include "tests/reliability/histories/history.h"
#include "tests/reliability/histories/reply.h"
#include "tests/reliability/histories/seen.h"
#include "tests/reliability/histories/stage.h"

#include <memory>

/// The library in a history: a driver on a link, its client, and a host that takes the answers.
class LibrarySide
{
public:
    explicit LibrarySide(const History& history);
    ~LibrarySide();

    void play(const Event& event, const Reply& reply);
    /// What has been seen since the last call.
    Seen take();

private:
    void open();
    void close();
    QSharedPointer<AddrData> addressOf(const Event& event) const;

    const History history_;
    Stage stage_;
    Seen seen_;
    DrvEthernet link_;
    std::unique_ptr<DrvTovikIot> driver_;
    bool is_closed_ = true;
};

#endif
