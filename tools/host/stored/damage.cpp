#include "property/value_stream.h"
#include "tools/host/stored/stream.h"
#include "tools/host/terminal/text_width.h"

#include <algorithm>

namespace tovik_host::stored {

namespace {

/// Bytes that a file may well lack at its end.
const int likely_loss = 4096;
const int word_size = sizeof(quint32);
/// A value that begins so near to the end is cut, whatever it seems to be: one that is none takes
/// as much.
const int shortest_value = 9;

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
          reading_{{PropertyTovikIot(), 0}, {}, size_}
    {
        prepare(in_, format);
    }

    Reading read()
    {
        const bool is_whole = takeHeader() && visitMembers(reading_.record.property, *this);
        const int end = position();
        if (is_whole && left(end) > 0) {
            stop(end, QStringLiteral("%1 bytes stand behind the end of the record").arg(left(end)),
                 end);
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
    int left(int start) const { return std::max(0, size_ - start); }

    bool takeHeader();

    template <typename T>
    bool take(T& member)
    {
        const int start = position();
        T value = T();
        if constexpr (std::is_same_v<T, QVariant>)
            ReadValue(in_, &value, &expressions_);
        else
            in_ >> value;
        const bool is_good = in_.status() == QDataStream::Ok;
        const int shortest = std::is_same_v<T, QVariant> ? shortest_value : word_size;
        const bool is_cut = is_good || left(start) < shortest;
        if (!is_good || position() > size_)
            return stop(start, fault<T>(start), is_cut ? size_ : start);
        member = value;
        ++reading_.record.known;
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
            const int known = reading_.record.known;
            list.append(T());
            path_ += QStringLiteral("[%1]").arg(i);
            is_whole = visitMembers(list.last(), *this);
            path_.truncate(length);
            if (reading_.record.known == known)
                list.removeLast();
        }
        return is_whole;
    }

    /// Notes where the bytes that were read from \a start on are not those that Qt writes.
    void compare(int start, const QByteArray& with);
    /// Notes what is wrong. \param reach the bytes that fit, if nothing was wrong before
    bool stop(int offset, const QString& problem, int reach);

    /// What is wrong with a value that cannot be read.
    template <typename T>
    QString fault(int start)
    {
        if constexpr (std::is_same_v<T, QString>)
            return faultOfText(start);
        else if constexpr (std::is_same_v<T, QVariant>)
            return faultOfValue(start);
        const bool is_count = std::is_same_v<T, quint32>;
        return shortage(sizeof(T) == 1 ? "the flag"
                        : is_count     ? "the count"
                                       : "the number",
                        sizeof(T), start);
    }
    QString faultOfText(int start);
    QString faultOfValue(int start);
    QString shortage(const char* what, int bytes, int start) const;
    /// What a variant says of its type.
    QString typeAt(int start);
    /// Reads a part of what could not be read, after which nothing else is.
    template <typename T>
    T readAgain(int start)
    {
        T value = T();
        in_.resetStatus();
        in_.device()->seek(start);
        in_ >> value;
        return value;
    }

    const Format format_;
    const QByteArray bytes_; ///< With the zeros.
    const int size_;         ///< Without them.
    QDataStream in_;
    ExpressionAllowance expressions_ = {};
    QString path_;
    Reading reading_;
};

bool Reader::takeHeader()
{
    const QByteArray header = headerOf(format_);
    const int name_at = header.indexOf("PropertyTovikIot") - word_size;
    if (header.isEmpty())
        return true;
    if (size_ < word_size)
        return stop(0, shortage("the variant's type", word_size, 0), size_);
    if (!bytes_.startsWith(header.left(word_size)))
        return stop(0, QStringLiteral("no variant of a type outside of Qt (%1)").arg(typeAt(0)), 0);
    if (size_ < header.size() && header.startsWith(bytes_.left(size_))) {
        return stop(std::min(name_at, size_),
                    shortage("the type's name", header.size() - name_at, name_at), size_);
    }
    if (bytes_.mid(name_at, header.size() - name_at) != header.mid(name_at)) {
        return stop(name_at,
                    QStringLiteral("a variant of %1, not of PropertyTovikIot").arg(typeAt(0)),
                    name_at);
    }
    in_.skipRawData(header.size());
    compare(0, header);
    return true;
}

void Reader::compare(int start, const QByteArray& with)
{
    const QByteArray found = bytes_.mid(start, position() - start);
    if (isSame(found, with) || reading_.problems.size() >= most_problems - 1)
        return;
    const auto place = std::mismatch(found.begin(), found.end(), with.begin(), with.end()).first;
    const int index = int(place - found.begin());
    stop(start + index,
         QStringLiteral("%1 stands here, where Qt writes %2")
             .arg(QString::fromLatin1(found.mid(index, 1).toHex()),
                  QString::fromLatin1(with.mid(index, 1).toHex())),
         start + index);
}

bool Reader::stop(int offset, const QString& problem, int reach)
{
    if (reading_.problems.isEmpty())
        reading_.reach = reach;
    reading_.problems.append({offset, path_, problem});
    return false;
}

QString Reader::faultOfText(int start)
{
    const quint32 length = readAgain<quint32>(start);
    if (left(start) < word_size)
        return shortage("the length of the text", word_size, start);
    if (length % 2 != 0)
        return QStringLiteral("a text of %1 bytes; it has two for each character").arg(length);
    return QStringLiteral(
               "the length of the text says %1 bytes, and the file has %2 more behind it")
        .arg(length)
        .arg(left(start) - word_size);
}

QString Reader::faultOfValue(int start)
{
    if (in_.status() == QDataStream::ReadCorruptData) {
        return QStringLiteral("a value of %1 that the driver does not read, or that holds such a "
                              "value, or lists more than %2 deep in one another")
            .arg(typeAt(start), QString::number(deepest_value));
    }
    return QStringLiteral("the value takes more than the %1 bytes that the file still has")
        .arg(left(start));
}

QString Reader::shortage(const char* what, int bytes, int start) const
{
    return QStringLiteral("%1 takes %2 bytes, and the file has %3 more")
        .arg(QLatin1String(what), QString::number(bytes), QString::number(left(start)));
}

QString Reader::typeAt(int start)
{
    const quint32 number = readAgain<quint32>(start);
    if (number == ownTypeIn(format_.version)) {
        const int flag_size = format_.version < QDataStream::Qt_4_2 ? 0 : 1;
        // Behind its end may be the account, if the length is wrong.
        const QByteArray name = readAgain<QByteArray>(start + word_size + flag_size);
        const QString shown = QString::fromUtf8(name.left(name.indexOf('\0')).left(200));
        return QStringLiteral("the type \"%1\"")
            .arg(terminal::printable(terminal::clipped(shown, 60)));
    }
    // Qt 4 numbered the types of its graphical part differently: better no name than a wrong one.
    const bool is_sure = number < uint(QMetaType::FirstGuiType);
    const char* const known = is_sure ? QMetaType::typeName(int(number)) : nullptr;
    return QStringLiteral("type %1").arg(number) +
           (known ? QStringLiteral(" (%1)").arg(QLatin1String(known)) : QString());
}

} // namespace

Reading readDamaged(const QByteArray& bytes, const Format& format)
{
    return Reader(bytes, format).read();
}

} // namespace tovik_host::stored
