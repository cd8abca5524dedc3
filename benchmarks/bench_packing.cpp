// ProtocolBasic's packing and unpacking of elements, raw and as characters.

#include "benchmarks/comparison.h"
#include "benchmarks/packing_peers.h"
#include "framework/protocol_basic.h"

namespace {

const double raw_target = 1.5;
const double character_target = 1.0;

/// What is packed, and how.
struct Elements
{
    int len;
    int size;
    int order;

    bool isSwapped() const { return order != ProtocolBasic::hostByteOrder(); }
    QByteArray bytes() const;
    bench::Row row(const char* what, double target) const;
};

QByteArray Elements::bytes() const
{
    QByteArray bytes(len, '\0');
    for (int i = 0; i < len; ++i)
        bytes[i] = char((i * 37 + 11) & 0x7F);
    return bytes;
}

bench::Row Elements::row(const char* what, double target) const
{
    return {std::string(what) + ", elements of " + std::to_string(size) +
                (order == 1 ? ", least first, " : ", most first, ") + std::to_string(len) +
                " bytes",
            target, double(len)};
}

QByteArray packed(const QByteArray& bytes, const Elements& elements, int ascii)
{
    QByteArray out;
    ProtocolBasic::addArray(out, bytes.constData(), bytes.size(), elements.size, elements.order,
                            ascii);
    return out;
}

QByteArray unpacked(const QByteArray& frame, const Elements& elements, int ascii)
{
    QByteArray out;
    ProtocolBasic::extractArray(out, frame.constData(), frame.size(), elements.size, elements.order,
                                ascii);
    return out;
}

void compareRaw(const Elements& e)
{
    const QByteArray bytes = e.bytes();
    bench::compare(
        e.row("pack", raw_target), [=] { return packed(bytes, e, 0); },
        [=] { return bench::packedRaw(bytes.constData(), e.len, e.size, e.isSwapped()); });
    // Swapping is its own inverse.
    bench::compare(
        e.row("unpack", raw_target), [=] { return unpacked(bytes, e, 0); },
        [=] { return bench::packedRaw(bytes.constData(), e.len, e.size, e.isSwapped()); });
}

void compareCharacters(const Elements& e)
{
    const QByteArray bytes = e.bytes();
    const bench::Row row = e.row("pack characters", character_target);
    const auto ours = [=] { return packed(bytes, e, 1); };
    const auto peer = [=] {
        return bench::packedCharacters(bytes.constData(), e.len, e.size, e.isSwapped());
    };
    bench::requireEqual(ours() == peer().toUpper(), row);
    bench::measure(row, "ours", ours);
    bench::measure(row, "peer", peer);

    const QByteArray frame = ours();
    bench::compare(
        e.row("unpack characters", character_target), [=] { return unpacked(frame, e, 1); },
        [=] {
            return bench::unpackedCharacters(frame.constData(), frame.size(), e.size,
                                             e.isSwapped());
        });
}

} // namespace

int main(int argc, char** argv)
{
    for (int size : {1, 2, 4}) {
        for (int order : {1, 0}) {
            for (int len : {8, 248, 4096}) {
                compareRaw({len, size, order});
                compareCharacters({len, size, order});
            }
        }
    }
    return bench::run(argc, argv);
}
