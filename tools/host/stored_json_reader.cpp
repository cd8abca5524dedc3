#include "tools/host/stored_json.h"

#include <QStringList>

namespace tovik_host {

namespace {

using Pointer = nlohmann::json::json_pointer;
using Json = nlohmann::json;

const char root_member[] = "tovik_iot";

/// A value of the file, and where it stands.
struct Place
{
    const JsonFile& file;
    const Json& json;
    Pointer pointer;

    Place at(const char* name) const { return {file, json.at(name), pointer / std::string(name)}; }
    Place at(std::size_t index) const { return {file, json.at(index), pointer / index}; }
    [[noreturn]] void fail(const QString& problem) const { file.fail(pointer, problem); }
};

/// The bytes of hexadecimal digits of either case.
QByteArray hexOf(const Place& place, const std::string& digits, std::size_t step)
{
    const bool is_hex = digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (!is_hex || digits.size() % step != 0) {
        place.fail(QStringLiteral("must be hexadecimal digits, %1 for each %2")
                       .arg(step)
                       .arg(step == 2 ? QStringLiteral("byte") : QStringLiteral("character")));
    }
    return QByteArray::fromHex(QByteArray::fromStdString(digits));
}

QString fromUtf16Units(const Place& place)
{
    const bool has_units = place.json.size() == 1 && place.json.contains("utf16") &&
                           place.json.at("utf16").is_string();
    if (place.json.contains("hidden")) {
        place.fail(QStringLiteral("is hidden in this file, which show wrote: only convert, or "
                                  "show --show-password, writes it"));
    }
    if (!has_units)
        place.fail(QStringLiteral("must be a text in quotes, null, or {\"utf16\": \"…\"}"));
    const QByteArray bytes = hexOf(place, place.json.at("utf16").get<std::string>(), 4);
    QString text = QLatin1String("");
    for (int i = 0; i < bytes.size(); i += 2)
        text += QChar(ushort(quint8(bytes.at(i)) << 8 | quint8(bytes.at(i + 1))));
    return text;
}

QString readText(const Place& place)
{
    if (place.json.is_null())
        return QString();
    if (place.json.is_object())
        return fromUtf16Units(place);
    if (!place.json.is_string())
        place.fail(QStringLiteral("must be a text in quotes, or null"));
    // Qt drops a byte order mark at the start of what it decodes.
    const QString text = QString::fromStdString('x' + place.json.get<std::string>());
    return text.size() == 1 ? QString(QLatin1String("")) : text.mid(1);
}

bool readFlag(const Place& place)
{
    if (!place.json.is_boolean())
        place.fail(QStringLiteral("must be true or false"));
    return place.json.get<bool>();
}

quint64 readSigned(const Place& place, int size)
{
    const qint64 highest = qint64(~quint64(0) >> (65 - 8 * size));
    const qint64 lowest = -highest - 1;
    const bool fits =
        place.json.is_number_integer() && place.json >= lowest && place.json <= highest &&
        !(place.json.is_number_unsigned() && place.json.get<quint64>() > quint64(highest));
    if (!fits) {
        place.fail(QStringLiteral("must be a whole number from %1 to %2").arg(lowest).arg(highest));
    }
    return quint64(place.json.get<qint64>());
}

quint64 readUnsigned(const Place& place, int size)
{
    const quint64 highest = ~quint64(0) >> (64 - 8 * size);
    if (!place.json.is_number_unsigned() || place.json.get<quint64>() > highest)
        place.fail(QStringLiteral("must be a whole number from 0 to %1").arg(highest));
    return place.json.get<quint64>();
}

/// A number that JSON has no number for.
std::optional<quint64> bitsOfText(const std::string& text)
{
    if (text == "nan")
        return Q_UINT64_C(0x7FF8000000000000);
    if (text == "inf")
        return Q_UINT64_C(0x7FF0000000000000);
    if (text == "-inf")
        return Q_UINT64_C(0xFFF0000000000000);
    bool is_number = false;
    const QByteArray digits = QByteArray::fromStdString(text).mid(5);
    const quint64 bits = digits.toULongLong(&is_number, 16);
    const bool is_bits = text.rfind("bits:", 0) == 0 && digits.size() == 16 && is_number;
    return is_bits ? std::optional<quint64>(bits) : std::nullopt;
}

quint64 readFloating(const Place& place, int size)
{
    if (place.json.is_string()) {
        const std::optional<quint64> bits = bitsOfText(place.json.get<std::string>());
        if (bits)
            return *bits;
    }
    if (!place.json.is_number()) {
        place.fail(QStringLiteral("must be a number, \"nan\", \"inf\", \"-inf\" or \"bits:\" with "
                                  "the 16 hexadecimal digits of a double"));
    }
    const double number = place.json.get<double>();
    if (size == 8)
        return bitsOf(number);
    const double largest = doubleOf(widened(0x7F7FFFFF));
    if (number > largest || number < -largest)
        place.fail(QStringLiteral("is too large for a float"));
    return bitsOf(double(float(number)));
}

const Json& arrayAt(const Place& place)
{
    if (!place.json.is_array())
        place.fail(QStringLiteral("must be a list: [...]"));
    return place.json;
}

void refuseOthers(const Place& place, const QStringList& known)
{
    if (!place.json.is_object())
        place.fail(QStringLiteral("must be an object: {...}"));
    MemberReader(place.file, place.pointer).refuseOthers(known);
}

StoredValue readValue(const Place& place, int depth);

void readEntries(const Place& place, StoredValue* value, int depth)
{
    const std::size_t count = arrayAt(place).size();
    for (std::size_t i = 0; i < count; ++i) {
        const Place entry = place.at(i);
        if (value->type->kind == ValueKind::list) {
            value->elements.push_back(readValue(entry, depth + 1));
            continue;
        }
        if (arrayAt(entry).size() != 2)
            entry.fail(QStringLiteral("must be a list of two: key and value"));
        value->texts.append(readText(entry.at(std::size_t(0))));
        value->elements.push_back(readValue(entry.at(1), depth + 1));
    }
}

void readContent(const Place& place, StoredValue* value, int depth)
{
    const int size = value->type->size;
    switch (value->type->kind) {
    case ValueKind::nothing:
        place.fail(QStringLiteral("an invalid value has no content"));
    case ValueKind::flag:
        value->bits = readFlag(place) ? 1 : 0;
        break;
    case ValueKind::signed_number:
        value->bits = readSigned(place, size);
        break;
    case ValueKind::unsigned_number:
        value->bits = readUnsigned(place, size);
        break;
    case ValueKind::floating:
        value->bits = readFloating(place, size);
        break;
    case ValueKind::text:
        value->text = readText(place);
        break;
    case ValueKind::bytes:
        if (!place.json.is_string() && !place.json.is_null())
            place.fail(QStringLiteral("must be hexadecimal digits in quotes, or null"));
        if (place.json.is_string()) {
            value->bytes = hexOf(place, place.json.get<std::string>(), 2);
            if (value->bytes.isNull())
                value->bytes = QByteArray("");
        }
        break;
    case ValueKind::texts:
        for (std::size_t i = 0; i < arrayAt(place).size(); ++i)
            value->texts.append(readText(place.at(i)));
        break;
    case ValueKind::list:
    case ValueKind::map:
        readEntries(place, value, depth);
        break;
    }
}

StoredValue readValue(const Place& place, int depth)
{
    if (depth > deepest_value)
        place.fail(
            QStringLiteral("lists stand in one another more than %1 deep").arg(deepest_value));
    refuseOthers(place,
                 {QStringLiteral("type"), QStringLiteral("null_flag"), QStringLiteral("value")});
    if (!place.json.contains("type"))
        place.fail(QStringLiteral("the member \"type\" is missing"));
    const QString name = readText(place.at("type"));
    const ValueType* type = findValueType(name);
    if (!type) {
        place.at("type").fail(QStringLiteral("\"%1\" is no type of a value; the types are: %2")
                                  .arg(name, allValueTypeNames()));
    }
    StoredValue value(*type);
    if (place.json.contains("null_flag"))
        value.null_flag = readFlag(place.at("null_flag"));
    if (place.json.contains("value"))
        readContent(place.at("value"), &value, depth);
    else if (type->kind != ValueKind::nothing)
        place.fail(QStringLiteral("the member \"value\" is missing"));
    return value;
}

/// Takes the members of a structure that the file has.
class Taker
{
public:
    explicit Taker(const Place& place) : place_(place) {}

    template <typename T>
    bool operator()(const char* name, T& member)
    {
        known_ << QString::fromLatin1(name);
        if (place_.json.contains(name))
            take(place_.at(name), &member);
        return true;
    }
    template <typename T>
    static T taken(const Place& place)
    {
        if (!place.json.is_object())
            place.fail(QStringLiteral("must be an object: {...}"));
        T structure;
        Taker taker(place);
        T::visit(structure, taker);
        refuseOthers(place, taker.known_);
        return structure;
    }

private:
    static void take(const Place& place, bool* member) { *member = readFlag(place); }
    static void take(const Place& place, qint32* member)
    {
        *member = qint32(qint64(readSigned(place, 4)));
    }
    static void take(const Place& place, QString* member) { *member = readText(place); }
    static void take(const Place& place, StoredValue* member) { *member = readValue(place, 0); }
    template <typename T>
    static void take(const Place& place, std::vector<T>* list)
    {
        const std::size_t count = arrayAt(place).size();
        for (std::size_t i = 0; i < count; ++i)
            list->push_back(taken<T>(place.at(i)));
    }

    const Place& place_;
    QStringList known_;
};

/// The choice among two words.
bool readWord(const Place& place, const QString& word_of_true, const QString& word_of_false)
{
    const QString word = place.json.is_string() ? readText(place) : QString();
    if (word != word_of_true && word != word_of_false)
        place.fail(QStringLiteral("must be \"%1\" or \"%2\"").arg(word_of_true, word_of_false));
    return word == word_of_true;
}

VersionRange readVersions(const Place& place)
{
    const QString text = place.json.is_number_integer()
                             ? QString::fromStdString(place.json.dump())
                             : (place.json.is_string() ? readText(place) : QString());
    const std::optional<VersionRange> versions = rangeOf(text);
    if (!versions) {
        place.fail(QStringLiteral("must be a stream version from %1 to %2, two of them with a dash "
                                  "between them, or a name such as \"Qt_4_8\"")
                       .arg(oldest_version)
                       .arg(newestVersion()));
    }
    return *versions;
}

} // namespace

StoredRecord recordFromJson(const JsonFile& file)
{
    const Place root = {file, file.root, Pointer()};
    refuseOthers(
        root, {QLatin1String(root_member), QStringLiteral("stream"), QStringLiteral("problems")});
    if (file.root.contains("problems") && !file.root.at("problems").empty()) {
        root.at("problems")
            .fail(QStringLiteral("this is what show wrote of a damaged stream: use "
                                 "convert --salvage on the stream"));
    }
    return Taker::taken<StoredRecord>(root.at(root_member));
}

FormatHints formatFromJson(const JsonFile& file)
{
    FormatHints hints;
    if (!file.root.contains("stream"))
        return hints;
    const Place stream = Place{file, file.root, Pointer()}.at("stream");
    refuseOthers(stream, {QStringLiteral("form"), QStringLiteral("version"),
                          QStringLiteral("byte_order"), QStringLiteral("float_precision")});
    if (stream.json.contains("form")) {
        const bool is_variant = readWord(stream.at("form"), formName(StoredForm::variant),
                                         formName(StoredForm::record));
        hints.form = is_variant ? StoredForm::variant : StoredForm::record;
    }
    if (stream.json.contains("version"))
        hints.versions = readVersions(stream.at("version"));
    if (stream.json.contains("byte_order"))
        hints.big_endian = readWord(stream.at("byte_order"), orderName(true), orderName(false));
    if (stream.json.contains("float_precision")) {
        hints.single_precision =
            readWord(stream.at("float_precision"), precisionName(true), precisionName(false));
    }
    return hints;
}

} // namespace tovik_host
