#ifndef FUZZ_MEMORY_H
#define FUZZ_MEMORY_H

#include <QByteArray>

#include <algorithm>
#include <memory>

namespace fuzz {

/// Bytes with nothing around them: one too far is seen, which a QByteArray's last zero would hide.
class Memory
{
public:
    /// \a size bytes, none below 0.
    explicit Memory(int size) : size_(std::max(size, 0)), bytes_(new char[std::size_t(size_)]()) {}
    explicit Memory(const QByteArray& bytes) : Memory(bytes.size())
    {
        std::copy(bytes.begin(), bytes.end(), bytes_.get());
    }

    char* data() { return bytes_.get(); }
    int size() const { return size_; }
    QByteArray copy() const { return QByteArray(bytes_.get(), size_); }

private:
    int size_;
    std::unique_ptr<char[]> bytes_;
};

} // namespace fuzz

#endif
