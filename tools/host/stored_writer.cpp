#include "tools/host/stored_writer.h"

#include "tools/host/stored_bytes.h"

namespace tovik_host {

namespace {

class Writer
{
public:
    explicit Writer(const StoredFormat& format) : format_(format), bytes_(format.big_endian) {}

    StoredWriting write(const StoredRecord& record);

    // The visitor of the structures.
    template <typename T>
    bool operator()(const char* name, const T& member)
    {
        path_.enter(name);
        if (!put(member))
            return false;
        path_.leave();
        return true;
    }

private:
    void header();
    bool put(bool member);
    bool put(qint32 member);
    bool put(const QString& member);
    bool put(const StoredValue& member);
    template <typename T>
    bool put(const std::vector<T>& list);
    bool payload(const StoredValue& value);
    bool floating(const StoredValue& value);
    bool children(const StoredValue& value);
    bool fail(const QString& problem);

    StoredFormat format_;
    StoredBytesOut bytes_;
    MemberPath path_;
    QString problem_;
};

StoredWriting Writer::write(const StoredRecord& record)
{
    if (format_.form == StoredForm::variant)
        header();
    if (!StoredRecord::visit(record, *this))
        return {QByteArray(), problem_};
    return {bytes_.result(), QString()};
}

void Writer::header()
{
    bytes_.number(4, userTypeId(format_.version));
    if (format_.hasNullFlag())
        put(false);
    bytes_.bytes(QByteArray(record_type, sizeof(record_type)));
}

bool Writer::put(bool member)
{
    bytes_.number(1, member ? 1 : 0);
    return true;
}

bool Writer::put(qint32 member)
{
    bytes_.number(4, quint32(member));
    return true;
}

bool Writer::put(const QString& member)
{
    bytes_.text(member);
    return true;
}

template <typename T>
bool Writer::put(const std::vector<T>& list)
{
    bytes_.number(4, list.size());
    int index = 0;
    for (const T& element : list) {
        path_.enter(index++);
        if (!T::visit(element, *this))
            return false;
        path_.leave();
    }
    return true;
}

bool Writer::put(const StoredValue& member)
{
    if (!format_.hasNullFlag() && !member.hasUsualNullFlag()) {
        return fail(QStringLiteral("its null flag cannot be stored in stream version %1, only from "
                                   "version 8 (Qt 4.2) on")
                        .arg(format_.version));
    }
    bytes_.number(4, member.type->idIn(format_.version));
    if (format_.hasNullFlag())
        put(member.null_flag);
    return payload(member);
}

bool Writer::payload(const StoredValue& value)
{
    switch (value.type->kind) {
    case ValueKind::nothing:
        if (!format_.hasQt5Types())
            bytes_.text(QString());
        return true;
    case ValueKind::flag:
    case ValueKind::signed_number:
    case ValueKind::unsigned_number:
        bytes_.number(value.type->size, value.bits);
        return true;
    case ValueKind::floating:
        return floating(value);
    case ValueKind::text:
        return put(value.text);
    case ValueKind::bytes:
        bytes_.bytes(value.bytes);
        return true;
    case ValueKind::texts:
        bytes_.number(4, quint64(value.texts.size()));
        for (const QString& text : value.texts)
            bytes_.text(text);
        return true;
    case ValueKind::list:
    case ValueKind::map:
        return children(value);
    }
    return false;
}

bool Writer::floating(const StoredValue& value)
{
    if ((value.type->size == 4 ? format_.floatSize() : format_.doubleSize()) == 8) {
        bytes_.number(8, value.bits);
        return true;
    }
    const std::optional<quint32> bits = narrowed(value.bits);
    if (!bits) {
        return fail(QStringLiteral("the value does not fit into the 4 bytes that floating numbers "
                                   "have in this format; take double precision and version 12 "
                                   "(Qt 4.6) or newer"));
    }
    bytes_.number(4, *bits);
    return true;
}

bool Writer::children(const StoredValue& value)
{
    bytes_.number(4, value.elements.size());
    int index = 0;
    for (const StoredValue& element : value.elements) {
        path_.enter(index);
        if (value.type->kind == ValueKind::map)
            bytes_.text(value.texts.at(index));
        if (!put(element))
            return false;
        path_.leave();
        ++index;
    }
    return true;
}

bool Writer::fail(const QString& problem)
{
    problem_ = path_.text() + QStringLiteral(": ") + problem;
    return false;
}

} // namespace

StoredWriting writeStored(const StoredRecord& record, const StoredFormat& format)
{
    return Writer(format).write(record);
}

} // namespace tovik_host
