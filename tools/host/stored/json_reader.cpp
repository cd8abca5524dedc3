#include "tools/host/stored/json.h"

#include <cmath>

namespace tovik_host::stored {

namespace {

/// A value of the file, and where it stands.
struct Place
{
    using Pointer = nlohmann::json::json_pointer;

    const config::JsonFile& file;
    const nlohmann::json& json;
    Pointer pointer;

    bool has(const char* name) const { return json.contains(name); }
    Place at(const char* name) const { return {file, json.at(name), pointer / std::string(name)}; }
    Place at(std::size_t index) const { return {file, json.at(index), pointer / index}; }
    [[noreturn]] void fail(const QString& problem) const { file.fail(pointer, problem); }
    void check(bool is_right, const char* problem) const
    {
        if (!is_right)
            fail(QString::fromUtf8(problem));
    }
    void allowOnly(const QStringList& members) const
    {
        check(json.is_object(), "must be an object: {...}");
        config::MemberReader(file, pointer).refuseOthers(members);
    }
    QByteArray bytes() const
    {
        return json.is_string() ? QByteArray::fromStdString(json.get<std::string>()) : QByteArray();
    }
};

QVariant readValue(const Place& place);

template <typename T>
QVariant readNumber(const Place& place)
{
    const qint64 lowest = std::numeric_limits<T>::min();
    const qint64 highest = std::numeric_limits<T>::max();
    const bool fits = place.json.is_number_unsigned()
                          ? place.json.get<quint64>() <= quint64(highest)
                          : place.json.is_number_integer() && place.json.get<qint64>() >= lowest;
    if (!fits)
        place.fail(QStringLiteral("must be a whole number from %1 to %2").arg(lowest).arg(highest));
    return QVariant::fromValue(place.json.get<T>());
}

template <typename T>
QVariant readFloating(const Place& place)
{
    if (place.json == "inf" || place.json == "-inf")
        return QVariant::fromValue(T(place.json == "inf" ? HUGE_VAL : -HUGE_VAL));
    place.check(place.json.is_number(), "must be a number, \"inf\" or \"-inf\"");
    const T number = place.json.get<T>();
    place.check(std::isfinite(number), "is too large for a float");
    return QVariant::fromValue(number);
}

QString readText(const Place& place)
{
    if (place.json.is_null())
        return QString();
    if (place.json.is_object()) {
        place.check(!place.has("hidden"), "is hidden in this file, which show wrote: only convert, "
                                          "or show --show-password, writes it");
        const QVariant text = readValue(place);
        place.check(text.userType() == QMetaType::QString, "must be a text");
        return text.toString();
    }
    place.check(place.json.is_string(), "must be a text in quotes, or null");
    const QString text = QString::fromStdString('x' + place.json.get<std::string>());
    return text.size() == 1 ? QString(QLatin1String("")) : text.mid(1);
}

QByteArray readBytes(const Place& place)
{
    if (place.json.is_null())
        return QByteArray();
    const QByteArray digits = place.bytes();
    const QByteArray bytes = QByteArray::fromHex(digits);
    place.check(place.json.is_string() && bytes.toHex() == digits.toLower(),
                "must be hexadecimal digits, 2 for each byte, in quotes, or null");
    return bytes; // not null
}

QVariant readWords(const Place& place, int type)
{
    switch (type) {
    case QMetaType::Bool:
        place.check(place.json.is_boolean(), "must be true or false");
        return place.json.get<bool>();
    case QMetaType::Short:
        return readNumber<short>(place);
    case QMetaType::UShort:
        return readNumber<ushort>(place);
    case QMetaType::Int:
        return readNumber<int>(place);
    case QMetaType::UInt:
        return readNumber<uint>(place);
    case QMetaType::Float:
        return readFloating<float>(place);
    case QMetaType::Double:
        return readFloating<double>(place);
    case QMetaType::QString:
        return readText(place);
    case QMetaType::QByteArray:
        return readBytes(place);
    default:
        place.fail(QStringLiteral("a value of this type stands as its \"stream\""));
    }
}

QVariant readStream(const Place& place, int type)
{
    const std::optional<QVariant> value = valueOf(QByteArray::fromBase64(place.bytes()));
    if (!value || value->userType() != type) {
        place.fail(
            QStringLiteral("must be a value of its type as streams of version %1 have it, in "
                           "base64")
                .arg(newestVersion()));
    }
    return *value;
}

QVariant readValue(const Place& place)
{
    place.allowOnly({QStringLiteral("type"), QStringLiteral("value"), QStringLiteral("stream")});
    place.check(place.has("type"), "the member \"type\" is missing");
    const QByteArray name = place.at("type").bytes();
    const int type = QMetaType::type(name);
    if (name == "invalid") {
        if (place.has("value"))
            place.at("value").fail(QStringLiteral("an invalid value has no content"));
        return QVariant();
    }
    if (type == QMetaType::UnknownType) {
        place.at("type").fail(
            QStringLiteral("\"%1\" is no type of a value; the types are: invalid, bool, short, "
                           "ushort, int, uint, float, double, QString, QByteArray; others stand "
                           "as a \"stream\"")
                .arg(QString::fromUtf8(name)));
    }
    if (place.has("stream"))
        return readStream(place.at("stream"), type);
    place.check(place.has("value"), "the member \"value\" is missing");
    return readWords(place.at("value"), type);
}

/// Takes a record, or a part of one; of its members, those that the file has.
template <typename T>
void read(const Place& place, T* part);

template <typename T>
void read(const Place& place, QList<T>* list)
{
    place.check(place.json.is_array(), "must be a list: [...]");
    for (std::size_t i = 0; i < place.json.size(); ++i) {
        list->append(T());
        read(place.at(i), &list->last());
    }
}

template <typename T>
void read(const Place& place, T* part)
{
    if constexpr (std::is_same_v<T, QVariant>) {
        *part = readValue(place);
    } else if constexpr (!is_structure<T>) {
        *part = readWords(place, qMetaTypeId<T>()).template value<T>();
    } else {
        QStringList known;
        visitMembers(*part, [&](const char* name, auto& member) {
            known << QLatin1String(name);
            if (place.has(name))
                read(place.at(name), &member);
            return true;
        });
        place.allowOnly(known);
    }
}

bool readChoice(const Place& place, const Choice& choice)
{
    const QString word = QString::fromUtf8(place.bytes());
    if (word != choice.word(true) && word != choice.word(false)) {
        place.fail(
            QStringLiteral("must be \"%1\" or \"%2\"").arg(choice.word(true), choice.word(false)));
    }
    return word == choice.word(true);
}

Versions readVersions(const Place& place)
{
    const QByteArray text =
        place.json.is_string() ? place.bytes() : QByteArray::fromStdString(place.json.dump());
    const std::optional<Versions> versions = rangeOf(QString::fromUtf8(text));
    if (!versions) {
        place.fail(QStringLiteral("must be a stream version from %1 to %2, two of them with a dash "
                                  "between them, or a name such as \"Qt_4_8\"")
                       .arg(oldest_version)
                       .arg(newestVersion()));
    }
    return *versions;
}

} // namespace

PropertyTovikIot recordFromJson(const config::JsonFile& file)
{
    const Place root = {file, file.root, Place::Pointer()};
    root.allowOnly(
        {QStringLiteral("tovik_iot"), QStringLiteral("stream"), QStringLiteral("problems")});
    if (root.has("problems")) {
        root.at("problems")
            .check(file.root.at("problems").empty(), "this is what show wrote of a damaged stream: "
                                                     "use convert --salvage on the stream");
    }
    PropertyTovikIot record;
    read(root.at("tovik_iot"), &record);
    return record;
}

Hints formatFromJson(const config::JsonFile& file)
{
    Hints hints;
    if (!file.root.contains("stream"))
        return hints;
    const Place root = {file, file.root, Place::Pointer()};
    const Place stream = root.at("stream");
    QStringList known = {QStringLiteral("version")};
    for (const Choice& choice : choices) {
        known << QLatin1String(choice.name);
        if (stream.has(choice.name))
            hints.*choice.hint = readChoice(stream.at(choice.name), choice);
    }
    if (stream.has("version"))
        hints.versions = readVersions(stream.at("version"));
    stream.allowOnly(known);
    return hints;
}

} // namespace tovik_host::stored
