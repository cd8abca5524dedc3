#include "tools/host/stored_reader.h"

#include "tools/host/stored_bytes.h"
#include "tools/host/terminal/text_width.h"

namespace tovik_host {

namespace {

/// A type's name out of a file, short enough for a message. What stands behind its end is not part
/// of it, and may be the account if the name's length is wrong.
QString shownName(const QByteArray& name)
{
    const QByteArray whole = name.left(name.indexOf('\0'));
    const QString shown = printable(clipped(QString::fromUtf8(whole.left(200)), 60));
    const int more = name.size() - whole.size() - 1;
    return more > 0 ? QStringLiteral("%1\" and %2 more bytes").arg(shown).arg(more)
                    : shown + QLatin1Char('"');
}

class Reader
{
public:
    Reader(const QByteArray& bytes, const StoredFormat& format, StoredReading* reading)
        : format_(format),
          bytes_(bytes, format.big_endian),
          reading_(reading)
    {}

    void read();

    // The visitor of the structures.
    template <typename T>
    bool operator()(const char* name, T& member)
    {
        path_.enter(name);
        if (!take(member))
            return false;
        path_.leave();
        ++*known_;
        return true;
    }
    template <typename T>
    bool operator()(const char* name, std::vector<T>& list)
    {
        path_.enter(name);
        quint64 count = 0;
        if (!number(4, "the count", &count))
            return false;
        ++*known_;
        if (!elements(count, list))
            return false;
        path_.leave();
        return true;
    }

private:
    bool header();
    bool take(bool& member) { return flag(&member); }
    bool take(qint32& member);
    bool take(QString& member) { return bytes_.text(&member) || stop(); }
    bool take(StoredValue& member) { return value(&member, 0); }
    template <typename T>
    bool elements(quint64 count, std::vector<T>& list);

    bool number(int size, const char* what, quint64* result)
    {
        return bytes_.number(size, what, result) || stop();
    }
    bool flag(bool* result);
    bool value(StoredValue* value, int depth);
    bool valueType(StoredValue* value);
    bool payload(StoredValue* value, int depth);
    bool behindInvalid();
    bool floating(StoredValue* value);
    bool texts(StoredValue* value);
    bool children(StoredValue* value, int depth);

    /// Notes what is wrong with the value at \a offset; reading may go on.
    void note(int offset, const QString& problem);
    /// Notes what the bytes lack.
    bool stop() { return stop(bytes_.position(), bytes_.problem(), bytes_.missing()); }
    bool stop(int offset, const QString& problem, qint64 missing = 0);

    StoredFormat format_;
    StoredBytes bytes_;
    StoredReading* reading_;
    MemberPath path_;
    int* known_ = nullptr;
};

void Reader::read()
{
    known_ = &reading_->record.known;
    *known_ = 0;
    const bool whole = (format_.form == StoredForm::record || header()) &&
                       StoredRecord::visit(reading_->record, *this);
    reading_->end = bytes_.position();
    if (whole && bytes_.left() > 0) {
        note(bytes_.position(),
             QStringLiteral("%1 bytes stand behind the end of the record").arg(bytes_.left()));
    }
}

bool Reader::header()
{
    quint64 id = 0;
    if (!number(4, "the variant's type", &id))
        return false;
    if (id != userTypeId(format_.version))
        return stop(0, QStringLiteral("no variant of a type outside of Qt (type %1)").arg(id));
    bool null_flag = false;
    if (format_.hasNullFlag() && !flag(&null_flag))
        return false;
    const int name_at = bytes_.position();
    if (null_flag)
        note(name_at - 1, QStringLiteral("the variant of the record is marked as null"));
    QByteArray name;
    if (!bytes_.bytes(&name))
        return stop();
    if (name == QByteArray(record_type, sizeof(record_type)))
        return true;
    return stop(name_at, QStringLiteral("a variant of the type \"%1, not of %2")
                             .arg(shownName(name), QLatin1String(record_type)));
}

bool Reader::take(qint32& member)
{
    quint64 bits = 0;
    if (!number(4, "the number", &bits))
        return false;
    member = qint32(quint32(bits));
    return true;
}

template <typename T>
bool Reader::elements(quint64 count, std::vector<T>& list)
{
    int* const outer = known_;
    // Room is made as the elements come: a count says nothing until they do.
    for (quint64 i = 0; i < count; ++i) {
        list.emplace_back();
        known_ = &list.back().known;
        *known_ = 0;
        path_.enter(int(i));
        const bool whole = T::visit(list.back(), *this);
        known_ = outer;
        if (!whole) {
            if (list.back().known == 0)
                list.pop_back();
            return false;
        }
        path_.leave();
    }
    return true;
}

bool Reader::flag(bool* result)
{
    quint64 bits = 0;
    if (!number(1, "the flag", &bits))
        return false;
    if (bits > 1)
        note(bytes_.position() - 1, QStringLiteral("the flag is %1, not 0 or 1").arg(bits));
    *result = bits != 0;
    return true;
}

bool Reader::value(StoredValue* value, int depth)
{
    if (depth > deepest_value) {
        return stop(
            bytes_.position(),
            QStringLiteral("lists stand in one another more than %1 deep").arg(deepest_value));
    }
    StoredValue whole;
    if (!valueType(&whole) || !payload(&whole, depth))
        return false;
    *value = std::move(whole);
    return true;
}

bool Reader::valueType(StoredValue* value)
{
    const int start = bytes_.position();
    quint64 id = 0;
    if (!number(4, "the type of the value", &id))
        return false;
    bool null_flag = false;
    if (format_.hasNullFlag() && !flag(&null_flag))
        return false;
    if (id == userTypeId(format_.version)) {
        QByteArray name;
        if (!bytes_.bytes(&name))
            return stop();
        return stop(start, QStringLiteral("a value of the type \"%1, which is not one of Qt's: "
                                          "how long it is cannot be known")
                               .arg(shownName(name)));
    }
    const ValueType* type = findValueType(quint32(id), format_.version);
    if (!type) {
        const QString name = nameOfUnknownType(quint32(id), format_.version);
        const QString shown = name.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(name);
        return stop(start,
                    QStringLiteral("a value of type %1%2; the types that can be read are: %3")
                        .arg(QString::number(id), shown, allValueTypeNames()));
    }
    *value = StoredValue(*type);
    if (format_.hasNullFlag())
        value->null_flag = null_flag;
    return true;
}

bool Reader::payload(StoredValue* value, int depth)
{
    switch (value->type->kind) {
    case ValueKind::nothing:
        return behindInvalid();
    case ValueKind::flag: {
        bool is_set = false;
        const bool taken = flag(&is_set);
        value->bits = is_set ? 1 : 0;
        return taken;
    }
    case ValueKind::signed_number: {
        const int unused = 64 - 8 * value->type->size;
        const bool taken = number(value->type->size, "the value", &value->bits);
        value->bits = quint64(qint64(value->bits << unused) >> unused);
        return taken;
    }
    case ValueKind::unsigned_number:
        return number(value->type->size, "the value", &value->bits);
    case ValueKind::floating:
        return floating(value);
    case ValueKind::text:
        return bytes_.text(&value->text) || stop();
    case ValueKind::bytes:
        return bytes_.bytes(&value->bytes) || stop();
    case ValueKind::texts:
        return texts(value);
    case ValueKind::list:
    case ValueKind::map:
        return children(value, depth);
    }
    return false;
}

bool Reader::behindInvalid()
{
    if (format_.hasQt5Types())
        return true;
    // Qt 4 wrote a text behind a value that there is not.
    const int start = bytes_.position();
    QString text;
    if (!bytes_.text(&text))
        return stop();
    if (!text.isNull())
        note(start, QStringLiteral("a text stands behind an invalid value"));
    return true;
}

bool Reader::floating(StoredValue* value)
{
    const int size = value->type->size == 4 ? format_.floatSize() : format_.doubleSize();
    if (!number(size, "the value", &value->bits))
        return false;
    if (size == 4)
        value->bits = widened(quint32(value->bits));
    return true;
}

bool Reader::texts(StoredValue* value)
{
    quint64 count = 0;
    if (!number(4, "the count", &count))
        return false;
    for (quint64 i = 0; i < count; ++i) {
        QString text;
        path_.enter(int(i));
        if (!bytes_.text(&text))
            return stop();
        path_.leave();
        value->texts.append(text);
    }
    return true;
}

bool Reader::children(StoredValue* value, int depth)
{
    quint64 count = 0;
    if (!number(4, "the count", &count))
        return false;
    for (quint64 i = 0; i < count; ++i) {
        path_.enter(int(i));
        if (value->type->kind == ValueKind::map) {
            QString key;
            if (!bytes_.text(&key))
                return stop();
            value->texts.append(key);
        }
        value->elements.emplace_back();
        if (!this->value(&value->elements.back(), depth + 1))
            return false;
        path_.leave();
    }
    return true;
}

void Reader::note(int offset, const QString& problem)
{
    if (reading_->problems.size() < most_problems - 1)
        reading_->problems.append({offset, path_.text(), problem, 0});
}

bool Reader::stop(int offset, const QString& problem, qint64 missing)
{
    reading_->problems.append({offset, path_.text(), problem, missing});
    return false;
}

} // namespace

StoredReading readStored(const QByteArray& bytes, const StoredFormat& format)
{
    StoredReading reading;
    Reader(bytes, format, &reading).read();
    return reading;
}

} // namespace tovik_host
