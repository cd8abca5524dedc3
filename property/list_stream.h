#ifndef PROPERTY_LIST_STREAM_H
#define PROPERTY_LIST_STREAM_H

#include "property/stream_registration.h"

#include <QDataStream>
#include <QIODevice>
#include <QList>
#include <QString>
#include <QVector>

#include <limits>

class PropertyTovikIotDataItem;
class PropertyTovikIotGroup;

/// The fewest bytes that a stored data item takes in any stream version: three texts, three
/// numbers and a variant's tag of 4 bytes each, and two flags of one.
const int smallest_dataitem_record = 3 * 4 + 3 * 4 + 4 + 2;
/// The fewest bytes that a stored group takes: five texts, a count, two flags.
const int smallest_group_record = 5 * 4 + 4 + 2;

/// Keeps equal texts once: a stored list repeats a few of them in every element.
class RepeatedTexts
{
public:
    /// Replaces \a text by an equal one that was given before.
    void share(QString* text)
    {
        for (int i = 0; i < texts_.size(); ++i) {
            const QString& known = texts_.at(i);
            if (known.size() == text->size() && known.isNull() == text->isNull() &&
                known == *text) {
                *text = known;
                return;
            }
        }
        if (texts_.size() < most_texts)
            texts_.append(*text);
    }

private:
    static const int most_texts = 16; ///< More than there are types of data items.

    QVector<QString> texts_;
};

/// Reads a text by way of \a buffer: what Qt reads into grows to about twice the text's size, and
/// the buffer takes that once for all texts.
inline void ReadText(QDataStream& stream, QString* text, QString* buffer)
{
    stream >> *buffer;
    // An empty text occupies nothing, and a null one stays null.
    *text = buffer->isEmpty() ? *buffer : QString(buffer->constData(), buffer->size());
}

/// Reads the members of a record; its stream operator also registers, which a list does once.
void ReadMembers(QDataStream& stream, PropertyTovikIotDataItem* item, QString* buffer);
void ReadMembers(QDataStream& stream, PropertyTovikIotGroup* group, QString* buffer);

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
/// \param repeated a text that is the same in many elements
template <typename T>
QDataStream& ReadList(QDataStream& stream, QList<T>* list, int smallest_record,
                      QString T::*repeated)
{
    list->clear();
    quint32 count = 0;
    stream >> count;
    const qint64 left = stream.device() ? stream.device()->bytesAvailable() : 0;
    const qint64 most = qMin(left / smallest_record + 1, qint64(std::numeric_limits<int>::max()));
    list->reserve(int(qMin(qint64(count), most)));
    if (count > 0)
        RegisterConfigurationStreaming();
    RepeatedTexts texts;
    QString buffer;
    for (quint32 i = 0; i < count; ++i) {
        list->append(T());
        T& element = list->last();
        ReadMembers(stream, &element, &buffer);
        texts.share(&(element.*repeated));
        if (stream.atEnd())
            break;
    }
    return stream;
}

#endif
