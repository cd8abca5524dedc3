#include "benchmarks/network/delay_line.h"

#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <netinet/ip.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <new>
#include <vector>

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

const std::size_t largest_packet = 65536;

[[noreturn]] void fail(const char* what)
{
    std::perror(what);
    std::exit(2);
}

void shell(const std::string& command)
{
    if (std::system(command.c_str()) != 0) {
        std::fprintf(stderr, "failed: %s\n", command.c_str());
        std::exit(2);
    }
}

/// A network device whose packets are read and written here.
int openDevice(const std::string& name)
{
    const int descriptor = open("/dev/net/tun", O_RDWR | O_NONBLOCK);
    ifreq request = {};
    request.ifr_flags = IFF_TUN | IFF_NO_PI;
    std::strncpy(request.ifr_name, name.c_str(), IFNAMSIZ - 1);
    if (descriptor < 0 || ioctl(descriptor, TUNSETIFF, &request) != 0)
        fail("a network device for the delay line");
    return descriptor;
}

/// Whether a packet opens a connection or carries data.
bool asksForAnAnswer(const std::vector<char>& bytes)
{
    iphdr outer = {};
    tcphdr inner = {};
    if (bytes.size() < sizeof outer)
        return false;
    std::memcpy(&outer, bytes.data(), sizeof outer);
    const std::size_t header = outer.ihl * 4U;
    if (outer.version != 4 || outer.protocol != IPPROTO_TCP || bytes.size() < header + sizeof inner)
        return false;
    std::memcpy(&inner, bytes.data() + header, sizeof inner);
    return inner.syn || bytes.size() > header + inner.doff * 4U;
}

/// Counts what comes from the near end.
class FlightCounter
{
public:
    FlightCounter(LineCounts* counts, int delay) : counts_(counts), delay_(delay) {}

    void count(const std::vector<char>& bytes)
    {
        const Clock::time_point now = Clock::now();
        if (!asksForAnAnswer(bytes) || now - begin_ < std::chrono::milliseconds(delay_))
            return;
        begin_ = now;
        ++counts_->flights;
    }

private:
    LineCounts* counts_;
    int delay_;
    Clock::time_point begin_;
};

/// Packets on their way in one direction.
struct Direction
{
    struct Packet
    {
        Clock::time_point due;
        std::vector<char> bytes;
    };

    int from;
    int to;
    std::deque<Packet> packets;

    template <typename Count>
    void takeIn(int delay, const Count& count)
    {
        std::vector<char> bytes(largest_packet);
        ssize_t size = 0;
        while ((size = read(from, bytes.data(), bytes.size())) > 0) {
            const auto due = Clock::now() + std::chrono::milliseconds(delay);
            packets.push_back({due, {bytes.begin(), bytes.begin() + size}});
            count(packets.back().bytes);
        }
    }

    void deliver()
    {
        for (; !packets.empty() && packets.front().due <= Clock::now(); packets.pop_front()) {
            const std::vector<char>& bytes = packets.front().bytes;
            if (write(to, bytes.data(), bytes.size()) < 0)
                return; // as a line loses a packet: the sender repeats it
        }
    }
};

/// Nanoseconds until the next packet is due; an hour if there is none.
std::chrono::nanoseconds nextIn(const Direction& one, const Direction& other)
{
    std::chrono::nanoseconds next = std::chrono::hours(1);
    for (const Direction* direction : {&one, &other}) {
        if (!direction->packets.empty())
            next = std::min<std::chrono::nanoseconds>(next, direction->packets.front().due -
                                                                Clock::now());
    }
    return std::max(next, std::chrono::nanoseconds(0));
}

[[noreturn]] void carry(int near, int far, int delay, LineCounts* counts)
{
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    Direction there = {near, far, {}};
    Direction back = {far, near, {}};
    FlightCounter flights(counts, delay);
    for (;;) {
        pollfd inputs[] = {{near, POLLIN, 0}, {far, POLLIN, 0}};
        const auto left = nextIn(there, back);
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
        const timespec limit = {time_t(seconds.count()), long((left - seconds).count())};
        ppoll(inputs, 2, &limit, nullptr);
        there.takeIn(delay, [&](const std::vector<char>& packet) {
            ++counts->packets;
            flights.count(packet);
        });
        back.takeIn(delay, [&](const std::vector<char>&) { ++counts->packets; });
        there.deliver();
        back.deliver();
    }
}

std::string address(int number, int end)
{
    return "10.99." + std::to_string(number) + "." + std::to_string(end);
}

/// Gives a device, in the network of \a process, its address and the way to the other end.
void setUp(pid_t process, const std::string& device, int number, int end)
{
    const std::string inside = "nsenter -t " + std::to_string(process) + " -n ip ";
    shell("ip link set " + device + " netns " + std::to_string(process));
    shell(inside + "addr add " + address(number, end) + " peer " + address(number, 3 - end) +
          " dev " + device);
    shell(inside + "link set " + device + " up");
}

} // namespace

void leaveNetwork()
{
    if (unshare(CLONE_NEWNET) != 0)
        fail("a network of its own (only root may have one)");
    shell("ip link set lo up");
}

DelayLine::DelayLine(pid_t far_process, int number, int delay) : number_(number)
{
    const std::string name = "line" + std::to_string(number);
    const int near = openDevice(name + "a");
    const int far = openDevice(name + "b");
    setUp(far_process, name + "b", number, 2);
    setUp(getpid(), name + "a", number, 1);
    void* shared = mmap(nullptr, sizeof(LineCounts), PROT_READ | PROT_WRITE,
                        MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED)
        fail("memory for the delay line");
    counts_ = new (shared) LineCounts{{0}, {0}};
    carrier_ = fork();
    if (carrier_ == 0)
        carry(near, far, delay, counts_);
    close(near);
    close(far);
}

DelayLine::~DelayLine()
{
    kill(carrier_, SIGTERM);
    waitpid(carrier_, nullptr, 0);
    munmap(counts_, sizeof *counts_);
}

std::string DelayLine::farAddress() const
{
    return address(number_, 2);
}

} // namespace bench
