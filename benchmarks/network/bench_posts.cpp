// One request of the client, with a connection of its own, beside libcurl: with a full handshake
// for each, and with sessions that are resumed as the client does.
#include "benchmarks/network/curl_post.h"
#include "benchmarks/network/delay_line.h"
#include "benchmarks/network/samples.h"
#include "benchmarks/network/tls_service.h"

#include "cloud/tovik_iot.h"

#include <QCoreApplication>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

namespace {

const char body[] = "{\"dataitem_id\":\"X\",\"token\":\"0123456789abcdef0123456789abcdef\"}";

const double most_round_trips = 3;
const int service_blocks = 5;

void ignore(QtMsgType, const QMessageLogContext&, const QString&) {}

/// The most that ours may take as a multiple of libcurl.
struct Targets
{
    double fresh;
    double fresh95;
    double fresh_processor;
    double shared;
    double shared95;
    double shared_processor;
};

Targets targetsOf(const bench::TlsKind& kind, bool is_delayed)
{
    if (is_delayed) {
        const double fresh = kind.is_tls_1_2 ? 0.77 : 1.02;
        return {fresh, fresh, 0, 1.03, 1.03, 0};
    }
    const double fresh = kind.is_p256 ? 1.2 : 0.95;
    return {fresh, fresh + 0.1, 1.25, 1.5, 1.6, 1.6};
}

/// The client and both ways of libcurl in front of one service.
class Comparison
{
public:
    explicit Comparison(const std::string& url) : url_(url), client_(&property_) {}

    bool ours()
    {
        const QString text = QString::fromLatin1(body);
        return !client_.PostRequest(text, QString::fromStdString(url_)).isEmpty();
    }
    bool fresh() const { return bench::curlPost(url_, body); }
    bool shared() const { return bench::curlPost(url_, body, &sessions_); }

    void measure(const std::string& name, int rounds, const Targets& targets, bench::Rows* rows)
    {
        std::vector<bench::Contender> all{{"ours", [this] { return ours(); }, {}},
                                          {"libcurl", [this] { return fresh(); }, {}},
                                          {"libcurl, shared", [this] { return shared(); }, {}}};
        bench::measureInTurn(rounds, &all);
        const bench::Samples& our_samples = all[0].samples;
        const std::string beside = name + ", sessions shared";
        rows->addWall(name, our_samples, all[1].samples, targets.fresh, targets.fresh95);
        rows->addWall(beside, our_samples, all[2].samples, targets.shared, targets.shared95);
        if (targets.fresh_processor == 0)
            return;
        rows->addProcessor(name, our_samples, all[1].samples, targets.fresh_processor);
        rows->addProcessor(beside, our_samples, all[2].samples, targets.shared_processor);
    }

private:
    std::string url_;
    PropertyTovikIot property_;
    TovikIot client_;
    bench::CurlSessions sessions_;
};

/// The service's processor time for one of \a requests, in milliseconds.
template <typename Request>
double serviceTime(const bench::TlsService& service, int requests, const Request& request)
{
    // What the service does after its reply is the reply's as well.
    const auto pause = std::chrono::milliseconds(20);
    std::this_thread::sleep_for(pause);
    const double begin = service.processorTime();
    for (int i = 0; i < requests; ++i) {
        if (!request())
            std::exit(2);
    }
    std::this_thread::sleep_for(pause);
    return (service.processorTime() - begin) / requests;
}

/// Resumed, as ours does, beside full handshakes.
void measureService(const bench::TlsService& service, const std::string& name, int requests,
                    Comparison* comparison, bench::Rows* rows)
{
    std::vector<double> resumed;
    std::vector<double> full;
    for (int i = 0; i < service_blocks; ++i) {
        resumed.push_back(serviceTime(service, requests, [&] { return comparison->ours(); }));
        full.push_back(serviceTime(service, requests, [&] { return comparison->fresh(); }));
    }
    rows->add("the service's processor for " + name + ", resumed beside full",
              bench::Samples::median(resumed), bench::Samples::median(full), 0);
}

/// How often one request waits for the far end, and how many packets it takes, in a row of them.
void countRoundTrips(const bench::LineCounts& counts, const std::string& name, int requests,
                     Comparison* comparison, bench::Rows* rows)
{
    const int flights = counts.flights;
    const int packets = counts.packets;
    for (int i = 0; i < requests; ++i) {
        if (!comparison->ours())
            std::exit(2);
    }
    const auto each = [requests](int count) { return double(count) / requests; };
    rows->addValue(name + ", round trips", std::round(each(counts.flights - flights)), "", 0,
                   most_round_trips);
    rows->addValue(name + ", packets", each(counts.packets - packets), "", 0);
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
        const std::string name = "one request, " + kinds[i].name();
        std::fprintf(stderr, "%s\n", name.c_str());
        Comparison comparison(services[i]->url("127.0.0.1"));
        comparison.measure(name, rounds, targetsOf(kinds[i], false), &rows);
        measureService(*services[i], name, rounds / 2, &comparison, &rows);
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
        Comparison comparison(services[i]->url(lines[i]->farAddress()));
        comparison.measure(name, rounds, targetsOf(kinds[i], true), &rows);
        countRoundTrips(lines[i]->counts(), name, rounds / 2, &comparison, &rows);
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
