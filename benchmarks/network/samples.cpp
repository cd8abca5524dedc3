#include "benchmarks/network/samples.h"

#include <sched.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace bench {

namespace {

const int uncounted_rounds = 5;

double milliseconds(const timeval& time)
{
    return double(time.tv_sec) * 1000 + double(time.tv_usec) / 1000;
}

double processorTime()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

double at(std::vector<double> values, double part)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[std::size_t(part * double(values.size() - 1))];
}

} // namespace

double Samples::median(const std::vector<double>& values)
{
    return at(values, 0.5);
}

double Samples::percentile95(const std::vector<double>& values)
{
    return at(values, 0.95);
}

void useOneProcessor()
{
    cpu_set_t first;
    CPU_ZERO(&first);
    CPU_SET(sched_getcpu(), &first);
    sched_setaffinity(0, sizeof first, &first);
}

Work repeated(int times, const Work& work)
{
    return [times, work] {
        for (int i = 0; i < times; ++i) {
            if (!work())
                return false;
        }
        return true;
    };
}

void measure(const Work& work, const char* what, Samples* samples)
{
    const double processor = processorTime();
    const auto begin = std::chrono::steady_clock::now();
    if (!work()) {
        std::fprintf(stderr, "%s failed\n", what);
        std::exit(2);
    }
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - begin;
    samples->wall.push_back(wall.count());
    samples->processor.push_back(processorTime() - processor);
}

void measureInTurn(int rounds, std::vector<Contender>* contenders)
{
    for (int i = 0; i < rounds + uncounted_rounds; ++i) {
        Samples uncounted;
        for (Contender& contender : *contenders) {
            measure(contender.work, contender.name,
                    i < uncounted_rounds ? &uncounted : &contender.samples);
        }
    }
}

void measureInTurn(int rounds, const Work& ours, const Work& peer, Samples* our_samples,
                   Samples* peer_samples)
{
    std::vector<Contender> both{{"ours", ours, {}}, {"the peer", peer, {}}};
    measureInTurn(rounds, &both);
    *our_samples = both[0].samples;
    *peer_samples = both[1].samples;
}

Options readOptions(int argc, char** argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--quick") == 0) {
            options.is_quick = true;
        } else if (std::strcmp(argv[i], "--delay") == 0 && i + 1 < argc &&
                   std::atoi(argv[i + 1]) > 0) {
            options.delay = std::atoi(argv[++i]);
        } else {
            std::fprintf(stderr, "usage: %s [--quick] [--delay MS]\n", argv[0]);
            std::exit(2);
        }
    }
    return options;
}

void Rows::add(const std::string& name, double ours, double peer, double target, double size,
               const std::string& unit)
{
    char text[400];
    std::snprintf(text, sizeof text, R"({"name": "%s", "unit": "%s", "ours": %.6f, "peer": %.6f)",
                  name.c_str(), unit.c_str(), ours, peer);
    std::string row = text;
    if (target > 0)
        row += ", \"target\": " + std::to_string(target);
    if (size > 0)
        row += ", \"size\": " + std::to_string(size);
    rows_.push_back(row + "}");
}

void Rows::addValue(const std::string& name, double ours, const std::string& unit, double size,
                    double target)
{
    char text[400];
    std::snprintf(text, sizeof text,
                  R"({"name": "%s", "unit": "%s", "kind": "value", "ours": %.3f, "size": %g)",
                  name.c_str(), unit.c_str(), ours, size);
    rows_.push_back(text + (target > 0 ? ", \"target\": " + std::to_string(target) : "") + "}");
}

void Rows::addWall(const std::string& name, const Samples& ours, const Samples& peer, double target,
                   double target95)
{
    add(name + ", wall, median", Samples::median(ours.wall), Samples::median(peer.wall), target);
    add(name + ", wall, 95th percentile", Samples::percentile95(ours.wall),
        Samples::percentile95(peer.wall), target95);
}

void Rows::addProcessor(const std::string& name, const Samples& ours, const Samples& peer,
                        double target)
{
    add(name + ", processor, median", Samples::median(ours.processor),
        Samples::median(peer.processor), target);
}

void Rows::print() const
{
    std::puts("[");
    for (std::size_t i = 0; i < rows_.size(); ++i)
        std::printf("%s%s\n", rows_[i].c_str(), i + 1 < rows_.size() ? "," : "");
    std::puts("]");
}

} // namespace bench
