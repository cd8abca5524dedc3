#include "tools/host/stored/stream.h"

#include "tools/host/terminal/text.h"

#include "property/value_stream.h"

#include <algorithm>

namespace tovik_host::stored {

namespace {

/// Newest version and widest numbers: every value is told from every other one.
const Format canonical = {false, QDataStream::Qt_DefaultCompiledVersion, true, false};

/// A member that lacks more than this at the end of a file is rather none in this format.
const int likely_loss = 4096;
/// A value that begins so near to the end is cut, whatever it seems to be: one that is none takes
/// as much.
const int shortest_value = 9;
const int word_size = sizeof(quint32);

void prepare(QDataStream& stream, const Format& format)
{
    stream.setVersion(format.version);
    stream.setByteOrder(format.big_endian ? QDataStream::BigEndian : QDataStream::LittleEndian);
    stream.setFloatingPointPrecision(format.single_precision ? QDataStream::SinglePrecision
                                                             : QDataStream::DoublePrecision);
}

template <typename T>
QByteArray bytesOf(const T& value, const Format& format)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    prepare(stream, format);
    stream << value;
    return bytes;
}

/// What a variant has in front of the record: the number of types that are not Qt's own, a flag
/// that says null, and the type's name.
QByteArray headerOf(const Format& format)
{
    if (!format.is_variant)
        return QByteArray();
    QByteArray header = bytesOf(quint32(format.version < QDataStream::Qt_5_0 ? 127 : 1024), format);
    if (format.version >= QDataStream::Qt_4_2)
        header += '\0';
    return header + bytesOf("PropertyTovikIot", format);
}

/// Whether the bytes are the same. Entries of a hash may stand in another order: it has none.
bool isSame(QByteArray left, QByteArray right)
{
    if (left.size() != right.size() || left == right)
        return left.size() == right.size();
    std::sort(left.begin(), left.end());
    std::sort(right.begin(), right.end());
    return left == right;
}

/// How many of the first bytes are the same.
int commonLength(const QByteArray& left, const QByteArray& right)
{
    const auto parting = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    return int(parting.first - left.begin());
}

/// Reads a stream member by member. Zeros follow it, so that a member at the end shows whether it
/// lacks a little or has nothing to do with the format.
class Reader
{
public:
    Reader(const QByteArray& bytes, const Format& format)
        : format_(format),
          bytes_(bytes + QByteArray(likely_loss, '\0')),
          size_(bytes.size()),
          in_(bytes_),
          reading_{PropertyTovikIot(), 0, {}, size_}
    {
        prepare(in_, format);
    }

    Reading read()
    {
        const bool is_whole = takeHeader() && visitMembers(reading_.record, *this);
        const int end = position();
        if (is_whole && end < size_) {
            const QString text = u"%1 bytes stand after the end of the record"_s;
            stop(end, text.arg(size_ - end), end);
        }
        return reading_;
    }

    // The visitor of the structures.
    template <typename T>
    bool operator()(const char* name, T& member)
    {
        const int length = path_.size();
        path_ += QLatin1String(length == 0 ? "" : ".") + QLatin1String(name);
        const bool is_read = take(member);
        path_.truncate(length);
        return is_read;
    }

private:
    int position() const { return int(in_.device()->pos()); }

    bool takeHeader()
    {
        const QByteArray header = headerOf(format_);
        const int same = std::min(commonLength(header, bytes_), size_);
        in_.skipRawData(header.size());
        if (same == header.size())
            return true;
        if (same == size_)
            return stop(same, shortage(same), size_);
        return stop(same, u"no variant of PropertyTovikIot has this byte here"_s,
                    same < word_size ? 0 : same);
    }

    template <typename T>
    bool take(T& member)
    {
        const bool is_value = std::is_same_v<T, QVariant>;
        const int start = position();
        T value = T();
        if constexpr (is_value)
            ReadValue(in_, &value, &expressions_);
        else
            in_ >> value;
        const bool is_good = in_.status() == QDataStream::Ok;
        if (!is_good || position() > size_) {
            const bool is_none = in_.status() == QDataStream::ReadCorruptData;
            const bool is_cut = is_good || size_ - start < (is_value ? shortest_value : word_size);
            return stop(
                start,
                !is_none ? shortage(start)
                : is_value
                    ? refusal(start)
                    : u"a text has two bytes for each character, and here it would have an odd "
                      "number"_s,
                is_cut ? size_ : start);
        }
        member = value;
        ++reading_.known;
        compare(start, bytesOf(value, format_));
        return true;
    }

    template <typename T>
    bool take(QList<T>& list)
    {
        quint32 count = 0;
        bool is_whole = take(count);
        const int length = path_.size();
        for (quint32 i = 0; i < count && is_whole; ++i) {
            const int known = reading_.known;
            list.append(T());
            path_ += u"[%1]"_s.arg(i);
            is_whole = visitMembers(list.last(), *this);
            path_.truncate(length);
            if (reading_.known == known)
                list.removeLast();
        }
        return is_whole;
    }

    /// Notes where the bytes that were read from \a start on are not those that Qt writes.
    void compare(int start, const QByteArray& with)
    {
        const QByteArray found = bytes_.mid(start, position() - start);
        if (!reading_.problems.isEmpty() || isSame(found, with))
            return;
        const int same = commonLength(found, with);
        stop(start + same,
             u"%1 stands here, where Qt writes %2"_s.arg(
                 QString::fromLatin1(found.mid(same, 1).toHex()),
                 QString::fromLatin1(with.mid(same, 1).toHex())),
             start + same);
    }

    /// Notes what is wrong. \param reach the bytes that fit, if nothing was wrong before
    bool stop(int offset, const QString& problem, int reach)
    {
        if (reading_.problems.isEmpty())
            reading_.reach = reach;
        reading_.problems.append({offset, path_, problem});
        return false;
    }

    QString shortage(int start) const
    {
        return u"takes more than the %1 bytes that the file still has"_s.arg(
            std::max(0, size_ - start));
    }

    /// Why a value is none.
    QString refusal(int start) const
    {
        quint32 number = 0;
        QDataStream again(bytes_.mid(start, word_size));
        prepare(again, format_);
        again >> number;
        // Qt 4 numbered the types of its graphical part differently: better no name than a wrong
        // one.
        const bool is_sure = number < uint(QMetaType::FirstGuiType);
        const char* const name = is_sure ? QMetaType::typeName(int(number)) : nullptr;
        return u"a value of type %1%2 that the driver does not read, or that holds such a value, "
               "or lists more than %3 deep in one another"_s.arg(
                   QString::number(number), name ? u" (%1)"_s.arg(QLatin1String(name)) : QString(),
                   QString::number(deepest_value));
    }

    const Format format_;
    const QByteArray bytes_; ///< With the zeros.
    const int size_;         ///< Without them.
    QDataStream in_;
    ExpressionAllowance expressions_ = {};
    QString path_;
    Reading reading_;
};

} // namespace

QByteArray written(const PropertyTovikIot& record, const Format& format)
{
    return headerOf(format) + bytesOf(record, format);
}

std::optional<PropertyTovikIot> readWhole(const QByteArray& bytes, const Format& format)
{
    const QByteArray header = headerOf(format);
    QDataStream stream(bytes);
    prepare(stream, format);
    stream.skipRawData(header.size());
    PropertyTovikIot record;
    if (bytes.startsWith(header))
        stream >> record;
    const bool is_whole = stream.status() == QDataStream::Ok && stream.atEnd() &&
                          isSame(written(record, format), bytes);
    return is_whole ? std::optional<PropertyTovikIot>(record) : std::nullopt;
}

Reading readDamaged(const QByteArray& bytes, const Format& format)
{
    return Reader(bytes, format).read();
}

QByteArray contentOf(const PropertyTovikIot& record)
{
    return written(record, canonical);
}

QString firstLoss(const PropertyTovikIot& record, const Format& format)
{
    const std::optional<PropertyTovikIot> again = readWhole(written(record, format), format);
    const QByteArray before = contentOf(record);
    const QByteArray after = again ? contentOf(*again) : QByteArray();
    if (isSame(before, after))
        return QString();
    // Cut where they part, the one ends in the member that differs.
    return readDamaged(before.left(commonLength(before, after)), canonical).problems.last().member;
}

QByteArray valueBytes(const QVariant& value)
{
    return bytesOf(value, canonical);
}

std::optional<QVariant> valueOf(const QByteArray& bytes)
{
    QDataStream stream(bytes);
    prepare(stream, canonical);
    QVariant value;
    ExpressionAllowance expressions = {};
    ReadValue(stream, &value, &expressions);
    const bool is_whole = stream.status() == QDataStream::Ok && stream.atEnd();
    return is_whole ? std::optional<QVariant>(value) : std::nullopt;
}

} // namespace tovik_host::stored
