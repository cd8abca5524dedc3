// A monitor cycle: one request for each served item, beside as many single posts with libcurl.
#include "benchmarks/network/curl_post.h"
#include "benchmarks/network/monitor.h"
#include "benchmarks/network/samples.h"
#include "benchmarks/network/tls_service.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>

namespace {

const char body[] = "{\"dataitem_id\":\"X\",\"token\":\"0123456789abcdef0123456789abcdef\"}";
const double target = 1.2;

void ignore(QtMsgType, const QMessageLogContext&, const QString&) {}

void compareCycles(const bench::TlsService& service, int items, int rounds, bench::Rows* rows)
{
    const std::string name = "a monitor cycle, " + std::to_string(items) + " items";
    std::fprintf(stderr, "%s\n", name.c_str());
    const std::string url = service.url("127.0.0.1");
    bench::Monitor monitor(url, items);
    bench::Samples ours;
    bench::Samples peer;
    bench::measureInTurn(
        rounds, [&] { return monitor.cycle(); },
        [&] {
            for (int i = 0; i < items; ++i) {
                if (!bench::curlPost(url, body))
                    return false;
            }
            return true;
        },
        &ours, &peer);
    rows->add(name + ", each", bench::Samples::median(ours.wall) / items,
              bench::Samples::median(peer.wall) / items, target, items);
}

} // namespace

int main(int argc, char** argv)
{
    // So many cycles of up to 10 items, and fewer of more.
    const int rounds = bench::readOptions(argc, argv).is_quick ? 10 : 100;
    qInstallMessageHandler(ignore);
    const bench::TlsService service({false, true}, false);
    const QCoreApplication application(argc, argv);
    bench::Rows rows;
    for (const int items : {1, 10, 100, 500})
        compareCycles(service, items, std::max(2, rounds * 10 / std::max(items, 10)), &rows);
    rows.print();
    return 0;
}
