#include "tools/host/stored_json.h"

#include <cmath>

namespace tovik_host {

namespace {

bool isWellFormed(const QString& text)
{
    for (int i = 0; i < text.size(); ++i) {
        if (!text.at(i).isSurrogate())
            continue;
        const bool is_pair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (!is_pair)
            return false;
        ++i;
    }
    return true;
}

OrderedJson floatingToJson(const StoredValue& value)
{
    const double number = doubleOf(value.bits);
    const bool has_type = value.type->size == 8 || narrowed(value.bits);
    if (has_type && std::isfinite(number))
        return number;
    if (std::isinf(number))
        return number > 0 ? "inf" : "-inf";
    const bool is_usual = value.bits == Q_UINT64_C(0x7FF8000000000000);
    if (is_usual)
        return "nan";
    return "bits:" + QByteArray::number(value.bits, 16).rightJustified(16, '0').toStdString();
}

OrderedJson listToJson(const StoredValue& value)
{
    OrderedJson list = OrderedJson::array();
    for (std::size_t i = 0; i < value.elements.size(); ++i) {
        OrderedJson element = valueToJson(value.elements[i]);
        if (value.type->kind == ValueKind::map)
            list.push_back(
                OrderedJson::array({textToJson(value.texts.at(int(i))), std::move(element)}));
        else
            list.push_back(std::move(element));
    }
    return list;
}

OrderedJson textsToJson(const QVector<QString>& texts)
{
    OrderedJson list = OrderedJson::array();
    for (const QString& text : texts)
        list.push_back(textToJson(text));
    return list;
}

OrderedJson contentToJson(const StoredValue& value)
{
    switch (value.type->kind) {
    case ValueKind::nothing:
        break;
    case ValueKind::flag:
        return value.bits != 0;
    case ValueKind::signed_number:
        return qint64(value.bits);
    case ValueKind::unsigned_number:
        return value.bits;
    case ValueKind::floating:
        return floatingToJson(value);
    case ValueKind::text:
        return textToJson(value.text);
    case ValueKind::bytes:
        return value.bytes.isNull() ? OrderedJson(nullptr)
                                    : OrderedJson(value.bytes.toHex().toStdString());
    case ValueKind::texts:
        return textsToJson(value.texts);
    case ValueKind::list:
    case ValueKind::map:
        return listToJson(value);
    }
    return nullptr;
}

/// Adds the members that are known of a structure.
class Adder
{
public:
    Adder(OrderedJson* object, int known, HiddenTexts hidden)
        : object_(object),
          known_(known),
          hidden_(hidden)
    {}

    template <typename T>
    bool operator()(const char* name, const T& member)
    {
        if (known_-- <= 0)
            return false;
        (*object_)[name] = isHidden(name, hidden_) ? hidden(member) : toJson(member);
        return true;
    }

private:
    static OrderedJson toJson(bool member) { return member; }
    static OrderedJson toJson(qint32 member) { return member; }
    static OrderedJson toJson(const QString& member) { return textToJson(member); }
    static OrderedJson toJson(const StoredValue& member) { return valueToJson(member); }
    template <typename T>
    static OrderedJson toJson(const std::vector<T>& list)
    {
        OrderedJson array = OrderedJson::array();
        for (const T& element : list) {
            OrderedJson object = OrderedJson::object();
            Adder adder(&object, element.known, HiddenTexts::none);
            T::visit(element, adder);
            array.push_back(std::move(object));
        }
        return array;
    }
    static OrderedJson hidden(const QString& text)
    {
        return text.isEmpty() ? textToJson(text) : OrderedJson{{"hidden", true}};
    }
    template <typename T>
    static OrderedJson hidden(const T& member)
    {
        return toJson(member);
    }

    OrderedJson* object_;
    int known_;
    HiddenTexts hidden_;
};

} // namespace

OrderedJson textToJson(const QString& text)
{
    if (text.isNull())
        return nullptr;
    if (isWellFormed(text))
        return text.toStdString();
    QByteArray units;
    for (const QChar character : text)
        units += QByteArray::number(character.unicode(), 16).rightJustified(4, '0');
    return {{"utf16", units.toStdString()}};
}

OrderedJson valueToJson(const StoredValue& value)
{
    OrderedJson object = {{"type", value.type->name}};
    if (!value.hasUsualNullFlag())
        object["null_flag"] = value.null_flag;
    if (value.type->kind != ValueKind::nothing)
        object["value"] = contentToJson(value);
    return object;
}

OrderedJson recordToJson(const StoredRecord& record, HiddenTexts hidden)
{
    OrderedJson object = OrderedJson::object();
    Adder adder(&object, record.known, hidden);
    StoredRecord::visit(record, adder);
    return object;
}

OrderedJson formatToJson(const FormatHints& format)
{
    OrderedJson object = OrderedJson::object();
    if (format.form)
        object["form"] = formName(*format.form).toStdString();
    if (format.versions) {
        object["version"] = format.versions->isOne()
                                ? OrderedJson(format.versions->first)
                                : OrderedJson(rangeText(*format.versions).toStdString());
    }
    if (format.big_endian)
        object["byte_order"] = orderName(*format.big_endian).toStdString();
    if (format.single_precision.value_or(false))
        object["float_precision"] = precisionName(true).toStdString();
    return object;
}

QByteArray storedJsonText(const OrderedJson& json)
{
    return QByteArray::fromStdString(json.dump(2)) + '\n';
}

} // namespace tovik_host
