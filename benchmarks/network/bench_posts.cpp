// One request of the client, with a connection and a TLS handshake of its own, beside libcurl.
#include "benchmarks/network/curl_post.h"
#include "benchmarks/network/delay_line.h"
#include "benchmarks/network/samples.h"
#include "benchmarks/network/tls_service.h"

#include "cloud/tovik_iot.h"

#include <QCoreApplication>

#include <cstdio>
#include <memory>
#include <vector>

namespace {

const char body[] = "{\"dataitem_id\":\"X\",\"token\":\"0123456789abcdef0123456789abcdef\"}";

const double target = 1.5;
const double delayed_target = 1.1;

void ignore(QtMsgType, const QMessageLogContext&, const QString&) {}

void comparePosts(const std::string& name, const std::string& url, int rounds, double most,
                  bool with_processor, bench::Rows* rows)
{
    PropertyTovikIot property;
    TovikIot client(&property);
    bench::Samples ours;
    bench::Samples peer;
    bench::measureInTurn(
        rounds,
        [&] {
            const QString text = QString::fromLatin1(body);
            return !client.PostRequest(text, QString::fromStdString(url)).isEmpty();
        },
        [&] { return bench::curlPost(url, body); }, &ours, &peer);
    if (with_processor) {
        rows->addAll(name, ours, peer, most);
        return;
    }
    rows->add(name + ", wall, median", bench::Samples::median(ours.wall),
              bench::Samples::median(peer.wall), most);
    rows->add(name + ", wall, 95th percentile", bench::Samples::percentile95(ours.wall),
              bench::Samples::percentile95(peer.wall), most);
}

const bench::TlsKind kinds[] = {{false, false}, {false, true}, {true, false}, {true, true}};

int compareOnLoopback(int rounds, int argc, char** argv)
{
    std::vector<std::unique_ptr<bench::TlsService>> services;
    for (const bench::TlsKind& kind : kinds)
        services.push_back(std::make_unique<bench::TlsService>(kind, false));
    const QCoreApplication application(argc, argv);
    bench::Rows rows;
    for (std::size_t i = 0; i < services.size(); ++i) {
        std::fprintf(stderr, "one request, %s\n", kinds[i].name().c_str());
        comparePosts("one request, " + kinds[i].name(), services[i]->url("127.0.0.1"), rounds,
                     target, true, &rows);
    }
    rows.print();
    return 0;
}

/// The way to the service takes so long in each direction.
int compareWithDelay(int rounds, int delay, int argc, char** argv)
{
    bench::Rows rows;
    std::vector<std::unique_ptr<bench::TlsService>> services;
    for (const bench::TlsKind& kind : kinds)
        services.push_back(std::make_unique<bench::TlsService>(kind, true));
    bench::leaveNetwork();
    std::vector<std::unique_ptr<bench::DelayLine>> lines;
    for (std::size_t i = 0; i < services.size(); ++i)
        lines.push_back(std::make_unique<bench::DelayLine>(services[i]->process(), int(i), delay));
    const QCoreApplication application(argc, argv);
    for (std::size_t i = 0; i < services.size(); ++i) {
        const std::string name = "one request, " + kinds[i].name() + ", " +
                                 std::to_string(2 * delay) + " ms there and back";
        std::fprintf(stderr, "%s\n", name.c_str());
        comparePosts(name, services[i]->url(lines[i]->farAddress()), rounds, delayed_target, false,
                     &rows);
    }
    rows.print();
    return 0;
}

} // namespace

/// With a delay it needs root: it makes network namespaces.
int main(int argc, char** argv)
{
    const bench::Options options = bench::readOptions(argc, argv);
    qInstallMessageHandler(ignore);
    if (options.delay > 0)
        return compareWithDelay(options.is_quick ? 10 : 40, options.delay, argc, argv);
    return compareOnLoopback(options.is_quick ? 40 : 200, argc, argv);
}
