#include "fuzz/protocol_areas.h"

#include "framework/protocol_basic.h"
#include "framework/result_code.h"
#include "fuzz/memory.h"
#include "fuzz/target.h"

namespace fuzz {

namespace {

/// Arguments that the operations share.
struct Packing
{
    explicit Packing(Input* input)
        : size(1 << input->choice(3)),
          order(qint8(input->byte())),
          ascii(input->flag() ? 1 : 0),
          width(ascii != 0 ? 2 : 1)
    {}

    int size;
    int order;
    int ascii;
    int width; ///< Characters of a byte.
};

QByteArray prefix()
{
    return QByteArray("before");
}

} // namespace

void dataArea(Input* input)
{
    const Packing packing(input);
    Memory source(input->rest());
    const int count = source.size() / packing.size;
    const int len = count * packing.size;
    ProtocolBasic protocol;
    QByteArray out = prefix();
    const int result = protocol.composeDataArea(&out, source.data(), packing.size, count,
                                                packing.order, packing.ascii);
    require(result == 0 && out.startsWith(prefix()) &&
                out.size() == prefix().size() + len * packing.width,
            "elements are appended with their size");
    Memory back(len);
    require(protocol.extractDataArea(back.data(), &out, prefix().size(), len * packing.width,
                                     packing.size, packing.order, packing.ascii) == 0 &&
                back.copy() == source.copy().left(len),
            "elements come back from a data area");
}

void array(Input* input)
{
    const Packing packing(input);
    const int missing = input->choice(packing.size);
    Memory source(input->rest());
    // The caller's promise: so many bytes are there. The last element may be a part of one.
    const int len = qMax(0, source.size() - missing);
    QByteArray out = prefix();
    require(ProtocolBasic::addArray(out, source.data(), len, packing.size, packing.order,
                                    packing.ascii) &&
                out.size() == prefix().size() + len * packing.width,
            "an array is appended with its size");
    Memory packed(out.mid(prefix().size()));
    QByteArray back;
    require(ProtocolBasic::extractArray(back, packed.data(), packed.size(), packing.size,
                                        packing.order, packing.ascii) &&
                back.size() == len,
            "an array that is unpacked has its size");
    const int whole = len - len % packing.size;
    require(back.left(whole) == source.copy().left(whole), "whole elements come back");
}

void areaInPlace(Input* input)
{
    const Packing packing(input);
    const QByteArray bytes = input->rest();
    const int len = bytes.size() - bytes.size() % packing.size;
    QByteArray apart;
    QByteArray inside = bytes;
    ProtocolBasic::addArray(apart, bytes.constData(), len, packing.size, packing.order,
                            packing.ascii);
    ProtocolBasic::addArray(inside, inside.constData(), len, packing.size, packing.order,
                            packing.ascii);
    require(inside == bytes + apart, "an array may be packed into itself");
    QByteArray composed = bytes;
    ProtocolBasic().composeDataArea(&composed, composed.data(), packing.size, len / packing.size,
                                    packing.order, packing.ascii);
    require(composed == inside, "both packings give the same");
    QByteArray out = apart;
    ProtocolBasic::extractArray(out, out.constData(), out.size(), packing.size, packing.order,
                                packing.ascii);
    require(out == bytes.left(len), "an array may be unpacked from itself");
}

void oddElements(Input* input)
{
    const int size = qint16(input->number16());
    const int order = qint8(input->byte());
    const int ascii = input->byte();
    const int len = input->signed32();
    Memory source(input->rest());
    const int there = qMin(len, source.size());

    QByteArray out = prefix();
    const bool packed = ProtocolBasic::addArray(out, source.data(), there, size, order, ascii);
    const bool is_size = size == 1 || size == 2 || size == 4;
    require(packed == (is_size || (size == 3 && there <= 0)) && out.startsWith(prefix()),
            "an array of another element size is refused");
    require(packed || out == prefix(), "what is refused leaves the array as it was");
    require(ProtocolBasic::extractArray(out, source.data(), there, size, order, ascii) == packed &&
                (packed || out.isEmpty()),
            "unpacking refuses what packing refuses");
    require(!ProtocolBasic::addArray(out, nullptr, len, size, order, ascii) &&
                !ProtocolBasic::extractArray(out, nullptr, len, size, order, ascii),
            "null is refused");

    const int count = size > 0 ? qMin(len, source.size() / size) : len;
    QByteArray area = prefix();
    require(ProtocolBasic().composeDataArea(&area, source.data(), size, count, order, ascii) == 0 &&
                area.startsWith(prefix()),
            "a data area only grows");
}

void outOfAnArea(Input* input)
{
    const int size = qint8(input->byte());
    const int order = qint8(input->byte());
    const int ascii = input->byte();
    const int offset = input->flag() ? input->byte() : input->signed32();
    const int len = input->flag() ? input->number16() : input->choice(8) - 4;
    QByteArray source = input->rest();
    const QByteArray before = source;
    // The caller's promise: room for so many bytes, or for half of it. Any length is fine for the
    // source, of which no more is read than there is.
    Memory room(ascii != 0 ? len / 2 : len);
    const int result =
        ProtocolBasic().extractDataArea(room.data(), &source, offset, len, size, order, ascii);
    require(result == 0 || result == result_code::not_supported, "the result is one of two");
    require(size <= 4 || result == result_code::not_supported, "a size above 4 is unsupported");
    require(size > 4 || len < 1 || size < 1 || (result == 0) == (offset >= 0),
            "a negative offset is refused");
    require(source == before, "the source stays as it is");
}

} // namespace fuzz
