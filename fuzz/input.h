#ifndef FUZZ_INPUT_H
#define FUZZ_INPUT_H

#include <QByteArray>

namespace fuzz {

/// Takes a target's choices from the front of its input. What is not there is 0 or empty.
class Input
{
public:
    explicit Input(const QByteArray& bytes) : bytes_(bytes) {}

    bool isEmpty() const { return at_ >= bytes_.size(); }
    int byte() { return isEmpty() ? 0 : static_cast<unsigned char>(bytes_.at(at_++)); }
    bool flag() { return (byte() & 1) != 0; }
    quint16 number16()
    {
        const int high = byte();
        return quint16(high << 8 | byte());
    }
    quint32 number32()
    {
        const quint32 high = number16();
        return high << 16 | number16();
    }
    int signed32() { return int(number32()); }
    /// One of 0 to \a count - 1.
    int choice(int count) { return byte() % count; }
    /// The next \a size bytes, or as many as there are.
    QByteArray bytes(int size)
    {
        const QByteArray taken = bytes_.mid(at_, size);
        at_ += taken.size();
        return taken;
    }
    QByteArray rest() { return bytes(bytes_.size()); }

private:
    const QByteArray& bytes_;
    int at_ = 0;
};

} // namespace fuzz

#endif
