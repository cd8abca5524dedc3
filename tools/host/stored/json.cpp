#include "tools/host/stored/json.h"

#include <cmath>

namespace tovik_host::stored {

namespace {

using config::JsonPlace;
using value::OrderedJson;

const int null_flag_at = 4; ///< In the bytes of a value.

QString fromUtf8(const std::string& text)
{
    // Qt drops a byte order mark at the start of what it decodes.
    const QString decoded = QString::fromStdString('x' + text);
    return decoded.size() == 1 ? QString(QLatin1String("")) : decoded.mid(1);
}

/// The values that hosts store; nothing for others, and for what JSON cannot say.
std::optional<OrderedJson> inWords(const QVariant& value)
{
    const QString text = value.toString();
    switch (value.userType()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Short:
    case QMetaType::Int:
        return value.toInt();
    case QMetaType::UShort:
    case QMetaType::UInt:
        return value.toUInt();
    case QMetaType::Float:
        if (std::isfinite(value.toFloat()))
            return value.toDouble();
        break;
    case QMetaType::QString:
        if (text.isNull())
            return OrderedJson();
        if (fromUtf8(text.toStdString()) == text)
            return text.toStdString();
        break;
    case QMetaType::QByteArray:
        return value.toByteArray().isNull()
                   ? OrderedJson()
                   : OrderedJson(value.toByteArray().toHex().toStdString());
    default:
        break;
    }
    return std::nullopt;
}

/// A cached value with its type: in JSON's words, or as the bytes of a stream where it has none.
OrderedJson valueToJson(const QVariant& value)
{
    if (!value.isValid())
        return {{"type", "invalid"}};
    const QByteArray bytes = valueBytes(value);
    const std::optional<OrderedJson> words =
        bytes.at(null_flag_at) == 0 ? inWords(value) : std::nullopt;
    if (words)
        return {{"type", value.typeName()}, {"value", *words}};
    return {{"type", value.typeName()}, {"stream", bytes.toBase64().toStdString()}};
}

/// A record, or a part of one; of its members, those that are known.
template <typename T>
OrderedJson toJson(const T& part, int* known);

template <typename T>
OrderedJson toJson(const QList<T>& list, int* known)
{
    OrderedJson array = OrderedJson::array();
    for (const T& element : list)
        array.push_back(toJson(element, known));
    return array;
}

template <typename T>
OrderedJson toJson(const T& part, int* known)
{
    if constexpr (std::is_same_v<T, QVariant>) {
        return valueToJson(part);
    } else if constexpr (!is_structure<T>) {
        const std::optional<OrderedJson> words = inWords(part);
        return words ? *words : valueToJson(part);
    } else {
        OrderedJson object = OrderedJson::object();
        visitMembers(part, [&](const char* name, const auto& member) {
            if ((*known)-- <= 0)
                return false;
            object[name] = toJson(member, known);
            return true;
        });
        return object;
    }
}

void check(const JsonPlace& place, bool is_right, const char* problem)
{
    if (!is_right)
        place.fail(QString::fromUtf8(problem));
}

template <typename T>
QVariant readNumber(const JsonPlace& place)
{
    return QVariant::fromValue(
        T(place.number(std::numeric_limits<T>::min(), std::numeric_limits<T>::max())));
}

QVariant readFloat(const JsonPlace& place)
{
    check(place, place.json().is_number(), "must be a number");
    const float number = place.json().get<float>();
    check(place, std::isfinite(number), "is too large for a float");
    return QVariant::fromValue(number);
}

QVariant readValue(const JsonPlace& place);

QString readText(const JsonPlace& place)
{
    if (place.json().is_null())
        return QString();
    if (place.json().is_object()) {
        check(place, !place.has("hidden"),
              "is hidden in this file, which show wrote: only convert, or show --show-password, "
              "writes it");
        const QVariant text = readValue(place);
        check(place, text.userType() == QMetaType::QString, "must be a text");
        return text.toString();
    }
    check(place, place.json().is_string(), "must be a text in quotes, or null");
    return fromUtf8(place.json().get<std::string>());
}

QByteArray readBytes(const JsonPlace& place)
{
    if (place.json().is_null())
        return QByteArray();
    const QByteArray digits = place.json().is_string() ? place.text().toUtf8() : "no digits";
    const QByteArray bytes = QByteArray::fromHex(digits);
    check(place, bytes.toHex() == digits.toLower(),
          "must be hexadecimal digits, 2 for each byte, in quotes, or null");
    return bytes; // not null
}

QVariant readWords(const JsonPlace& place, int type)
{
    switch (type) {
    case QMetaType::Bool:
        return place.flag();
    case QMetaType::Short:
        return readNumber<short>(place);
    case QMetaType::UShort:
        return readNumber<ushort>(place);
    case QMetaType::Int:
        return readNumber<int>(place);
    case QMetaType::UInt:
        return readNumber<uint>(place);
    case QMetaType::Float:
        return readFloat(place);
    case QMetaType::QString:
        return readText(place);
    case QMetaType::QByteArray:
        return readBytes(place);
    default:
        place.fail(u"a value of this type stands as its \"stream\""_s);
    }
}

QVariant readStream(const JsonPlace& place, int type)
{
    const std::optional<QVariant> value = valueOf(QByteArray::fromBase64(place.text().toUtf8()));
    if (!value || value->userType() != type) {
        place.fail(u"must be a value of its type as streams of version %1 have it, in base64"_s.arg(
            all_versions.last));
    }
    return *value;
}

QVariant readValue(const JsonPlace& place)
{
    place.allowOnly({"type", "value", "stream"});
    const QString name = place.at("type").text();
    const int type = QMetaType::type(name.toUtf8());
    if (name == QLatin1String("invalid")) {
        if (place.has("value"))
            place.at("value").fail(u"an invalid value has no content"_s);
        return QVariant();
    }
    if (type == QMetaType::UnknownType) {
        place.at("type").fail(
            u"\"%1\" is no type of a value; the types are: invalid, bool, short, ushort, int, "
            "uint, float, QString, QByteArray; others stand as a \"stream\""_s.arg(name));
    }
    return place.has("stream") ? readStream(place.at("stream"), type)
                               : readWords(place.at("value"), type);
}

/// Takes a record, or a part of one; of its members, those that the file has.
template <typename T>
void read(const JsonPlace& place, T* part);

template <typename T>
void read(const JsonPlace& place, QList<T>* list)
{
    for (const JsonPlace& element : place.elements()) {
        list->append(T());
        read(element, &list->last());
    }
}

template <typename T>
void read(const JsonPlace& place, T* part)
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

Versions readVersions(const JsonPlace& place)
{
    const QString text =
        place.json().is_string() ? place.text() : QString::fromStdString(place.json().dump());
    const std::optional<Versions> versions = rangeOf(text);
    if (!versions) {
        place.fail(
            u"must be a stream version from %1 to %2, two of them with a dash between them, or a "
            "name such as \"Qt_4_8\""_s.arg(all_versions.first)
                .arg(all_versions.last));
    }
    return *versions;
}

} // namespace

OrderedJson recordToJson(const PropertyTovikIot& record, int known)
{
    return toJson(record, &known);
}

OrderedJson formatToJson(const Hints& format)
{
    OrderedJson object = OrderedJson::object();
    for (const Choice& choice : choices) {
        const std::optional<bool>& value = format.*choice.hint;
        const bool is_usual = choice.hint == &Hints::single_precision && value == false;
        if (value && !is_usual)
            object[choice.name] = choice.word(*value);
        if (choice.hint == &Hints::is_variant && format.versions) {
            const Versions& range = *format.versions;
            object["version"] = range.first == range.last ? OrderedJson(range.first)
                                                          : OrderedJson(rangeText(range));
        }
    }
    return object;
}

PropertyTovikIot recordFromJson(const config::JsonFile& file)
{
    const JsonPlace root(file);
    root.allowOnly({"tovik_iot", "stream", "problems"});
    if (root.has("problems")) {
        check(root.at("problems"), root.json().at("problems").empty(),
              "this is what show wrote of a damaged stream: use convert --salvage on the stream");
    }
    PropertyTovikIot record;
    read(root.at("tovik_iot"), &record);
    return record;
}

Hints formatFromJson(const config::JsonFile& file)
{
    const JsonPlace root(file);
    Hints hints;
    if (!root.has("stream"))
        return hints;
    const JsonPlace stream = root.at("stream");
    stream.allowOnly({"form", "version", "byte_order", "float_precision"});
    for (const Choice& choice : choices) {
        if (!stream.has(choice.name))
            continue;
        const JsonPlace place = stream.at(choice.name);
        const QString word = place.text();
        if (word != choice.word(true) && word != choice.word(false))
            place.fail(u"must be \"%1\" or \"%2\""_s.arg(choice.word(true), choice.word(false)));
        hints.*choice.hint = word == choice.word(true);
    }
    if (stream.has("version"))
        hints.versions = readVersions(stream.at("version"));
    return hints;
}

} // namespace tovik_host::stored
