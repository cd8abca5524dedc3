#ifndef PROPERTY_LIST_STREAM_H
#define PROPERTY_LIST_STREAM_H

#include <QDataStream>
#include <QIODevice>
#include <QList>

#include <limits>

/// The fewest bytes that a stored data item takes in any stream version: three texts, three
/// numbers and a variant's tag of 4 bytes each, and two flags of one.
const int smallest_dataitem_record = 3 * 4 + 3 * 4 + 4 + 2;
/// The fewest bytes that a stored group takes: five texts, a count, two flags.
const int smallest_group_record = 5 * 4 + 4 + 2;

/// Writes a count and the elements.
template <typename T>
QDataStream& WriteList(QDataStream& stream, const QList<T>& list)
{
    stream << quint32(list.size());
    for (int i = 0; i < list.size(); ++i)
        stream << list.at(i);
    return stream;
}

/// Reads a count and the elements, and stops behind the element in which the stream ends.
///
/// Qt's own list operator empties the list when the stream ends early (since Qt 5), and reserves
/// room for whatever count it reads. Neither suits stored project files: what could be read of a
/// cut file is worth having, and a damaged count must not take the host's memory.
/// \param smallest_record fewest bytes of one element: no more elements are reserved than the
///        stream can still hold.
template <typename T>
QDataStream& ReadList(QDataStream& stream, QList<T>* list, int smallest_record)
{
    list->clear();
    quint32 count = 0;
    stream >> count;
    const qint64 left = stream.device() ? stream.device()->bytesAvailable() : 0;
    const qint64 most = qMin(left / smallest_record + 1, qint64(std::numeric_limits<int>::max()));
    list->reserve(int(qMin(qint64(count), most)));
    for (quint32 i = 0; i < count; ++i) {
        T element;
        stream >> element;
        list->append(element);
        if (stream.atEnd())
            break;
    }
    return stream;
}

#endif
