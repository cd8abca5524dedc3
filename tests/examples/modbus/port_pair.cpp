#include "tests/examples/modbus/port_pair.h"

#include <poll.h>

PortPair::PortPair() : thread_([this] { pump(); }) {}

PortPair::~PortPair()
{
    stop_ = true;
    thread_.join();
}

void PortPair::pump()
{
    while (!stop_) {
        pollfd polled[] = {{lines_[0].descriptor(), POLLIN, 0},
                           {lines_[1].descriptor(), POLLIN, 0}};
        poll(polled, 2, 100);
        lines_[1].sendAll(lines_[0].take());
        lines_[0].sendAll(lines_[1].take());
    }
}
