#ifndef TOOLS_HOST_STORED_BYTES_H
#define TOOLS_HOST_STORED_BYTES_H

#include <QByteArray>
#include <QString>

namespace tovik_host {

/// Takes values off a stream's bytes, with bounds. A function that returns false has taken nothing
/// and left its result alone; why, says problem().
class StoredBytes
{
public:
    /// \param bytes must outlive this object.
    StoredBytes(const QByteArray& bytes, bool big_endian) : bytes_(bytes), big_endian_(big_endian)
    {}

    int position() const { return position_; }
    int left() const { return bytes_.size() - position_; }
    const QString& problem() const { return problem_; }
    /// Bytes that the file would have to be longer; 0 when that is not the problem.
    qint64 missing() const { return missing_; }

    /// A number of 1 to 8 bytes. \param what names it in the problem.
    bool number(int size, const char* what, quint64* value);
    /// A count of bytes and UTF-16 code units; all ones for a null text.
    bool text(QString* text);
    /// A count of bytes and the bytes; all ones for a null array.
    bool bytes(QByteArray* bytes);

private:
    bool counted(const char* what, quint64* size);
    bool fail(const QString& problem, qint64 missing = 0);

    const QByteArray& bytes_;
    bool big_endian_;
    int position_ = 0;
    QString problem_;
    qint64 missing_ = 0;
};

/// The opposite.
class StoredBytesOut
{
public:
    explicit StoredBytesOut(bool big_endian) : big_endian_(big_endian) {}

    const QByteArray& result() const { return bytes_; }

    void number(int size, quint64 value);
    void text(const QString& text);
    void bytes(const QByteArray& bytes);

private:
    QByteArray bytes_;
    bool big_endian_;
};

} // namespace tovik_host

#endif
