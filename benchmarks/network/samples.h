#ifndef BENCHMARKS_NETWORK_SAMPLES_H
#define BENCHMARKS_NETWORK_SAMPLES_H

#include <functional>
#include <string>
#include <vector>

/// \file
/// Measurements of what is too slow and too uneven for loops in memory: ours and the peer's in
/// turn, with medians and 95th percentiles.
namespace bench {

/// The cost of some pieces of work of one kind, in milliseconds each.
struct Samples
{
    std::vector<double> wall;
    std::vector<double> processor; ///< Of the whole process, all threads.

    static double median(const std::vector<double>& values);
    static double percentile95(const std::vector<double>& values);
};

/// Does a piece of work; false ends the program: what fails cannot be compared.
using Work = std::function<bool()>;

/// Keeps this process on one processor; to be called before it has threads. Where two threads take
/// turns, it is chance otherwise whether waking the other one means waking a sleeping processor,
/// which takes three times as long as the rest.
void useOneProcessor();

/// So much of the same work as one piece. What takes microseconds is measured so: a processor that
/// has just been woken takes longer than the work itself.
Work repeated(int times, const Work& work);

/// One piece of work, measured.
void measure(const Work& work, const char* what, Samples* samples);

/// Something to be measured beside others.
struct Contender
{
    const char* name;
    Work work;
    Samples samples;
};

/// Does all in turn, \a rounds times, after some rounds that do not count.
void measureInTurn(int rounds, std::vector<Contender>* contenders);
/// The same with two.
void measureInTurn(int rounds, const Work& ours, const Work& peer, Samples* our_samples,
                   Samples* peer_samples);

/// What a benchmark's command line says.
struct Options
{
    bool is_quick = false; ///< `--quick`: fewer rounds, for a first impression.
    int delay = 0;         ///< `--delay MS`: of the way to the service, in each direction.
};

/// Reads the command line; ends the program with a line of usage if it says anything else.
Options readOptions(int argc, char** argv);

/// Rows for the table; printed as JSON when all are measured.
class Rows
{
public:
    /// \param target the most that ours may take as a multiple of the peer; 0: no demand
    /// \param size items or bytes, for the plots; 0: not plotted over a size
    void add(const std::string& name, double ours, double peer, double target, double size = 0,
             const std::string& unit = "ms");
    /// A row with nothing to compare it with. \param target the most that is allowed; 0: no demand
    void addValue(const std::string& name, double ours, const std::string& unit, double size,
                  double target = 0);
    /// Median and 95th percentile of wall time.
    void addWall(const std::string& name, const Samples& ours, const Samples& peer, double target,
                 double target95);
    /// The median of processor time.
    void addProcessor(const std::string& name, const Samples& ours, const Samples& peer,
                      double target);
    void print() const;

private:
    std::vector<std::string> rows_;
};

} // namespace bench

#endif
