#ifndef PROPERTY_LIST_STREAM_H
#define PROPERTY_LIST_STREAM_H

#include "property/property_tovik_iot_dataitem.h"
#include "property/property_tovik_iot_group.h"
#include "property/stream_registration.h"
#include "property/value_stream.h"

#include <QDataStream>
#include <QIODevice>
#include <QList>
#include <QString>
#include <QVector>

#include <limits>

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

/// What the members of one record share while it is read, those of its lists included.
struct Reading
{
    /// What Qt reads a text into grows to about twice the text's size; this takes that once.
    QString buffer;
    ExpressionAllowance expressions;
};

/// Reads all members; an element's stream operator also registers, which a list does once.
void ReadMembers(QDataStream& stream, PropertyTovikIotDataItem* item, Reading* reading);
void ReadMembers(QDataStream& stream, PropertyTovikIotGroup* group, Reading* reading);

/// Reads a count and the elements, and stops after the element in which the stream ends.
///
/// Qt's own list operator empties the list when the stream ends early (since Qt 5), and reserves
/// room for whatever count it reads. Neither suits stored project files: what could be read of a
/// cut file is worth having, and a damaged count must not take the host's memory.
/// \param smallest_record fewest bytes of one element in any stream version: no more elements are
///        reserved than the stream can still hold.
/// \param repeated a text that is the same in many elements
template <typename T>
void ReadList(QDataStream& stream, QList<T>* list, int smallest_record, QString T::*repeated,
              Reading* reading)
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
    for (quint32 i = 0; i < count && (i == 0 || !stream.atEnd()); ++i) {
        list->append(T());
        T& element = list->last();
        ReadMembers(stream, &element, reading);
        texts.share(&(element.*repeated));
    }
}

/// Reads members in order.
template <typename Record>
struct MemberReader
{
    QDataStream& stream;
    Record* record;
    Reading* reading;

    template <typename Member>
    bool operator()(Member Record::*member) const
    {
        read(&(record->*member));
        return true;
    }

    template <typename Number>
    void read(Number* number) const
    {
        stream >> *number;
    }
    void read(QString* text) const
    {
        QString& buffer = reading->buffer;
        stream >> buffer;
        // An empty text occupies nothing, and a null one stays null.
        *text = buffer.isEmpty() ? buffer : QString(buffer.constData(), buffer.size());
    }
    void read(QVariant* value) const { ReadValue(stream, value, &reading->expressions); }
    void read(QList<PropertyTovikIotDataItem>* items) const
    {
        // Three texts, three numbers, a variant's type, two flags.
        ReadList(stream, items, 3 * 4 + 3 * 4 + 4 + 2, &PropertyTovikIotDataItem::type, reading);
    }
    void read(QList<PropertyTovikIotGroup>* groups) const
    {
        // Five texts, a count, two flags.
        ReadList(stream, groups, 5 * 4 + 4 + 2, &PropertyTovikIotGroup::permission, reading);
    }
};

/// Writes members in order.
template <typename Record>
struct MemberWriter
{
    QDataStream& stream;
    const Record& record;

    template <typename Member>
    bool operator()(Member Record::*member) const
    {
        write(record.*member);
        return true;
    }

    template <typename Value>
    void write(const Value& value) const
    {
        stream << value;
    }
    template <typename T>
    void write(const QList<T>& list) const
    {
        stream << quint32(list.size());
        for (int i = 0; i < list.size(); ++i)
            stream << list.at(i);
    }
};

#endif
