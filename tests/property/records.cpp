#include "tests/property/records.h"

namespace {

QString line(const char* name, const QVariant& value)
{
    const char* type = value.isValid() ? value.typeName() : "invalid";
    QString text = value.toString();
    if (value.userType() == QMetaType::QByteArray)
        text = QString::fromLatin1(value.toByteArray().toHex());
    return QLatin1String(name) + QLatin1Char(' ') + QLatin1String(type) + QLatin1String(" \"") +
           text + QLatin1Char('"');
}

QString numbered(const char* text, int number)
{
    return QLatin1String(text) + QLatin1Char(' ') + QString::number(number);
}

template <typename T>
void appendList(QStringList* lines, const char* name, const QList<T>& list)
{
    lines->append(numbered(name, list.size()));
    for (int i = 0; i < list.size(); ++i) {
        const QString prefix = numbered(name, i) + QLatin1Char(' ');
        for (const QString& element_line : describe(list.at(i)))
            lines->append(prefix + element_line);
    }
}

} // namespace

QStringList describe(const PropertyTovikIotDataItem& item)
{
    return QStringList{line("name", item.name),    line("dataitem_id", item.dataitem_id),
                       line("type", item.type),    line("length", item.length),
                       line("value", item.value),  line("cloud_status", item.cloud_status),
                       line("alert", item.alert),  line("update_time", item.update_time),
                       line("marked", item.marked)};
}

QStringList describe(const PropertyTovikIotGroup& group)
{
    QStringList lines{line("group_id", group.group_id), line("name", group.name),
                      line("location", group.location), line("ddLocation", group.ddLocation),
                      line("alert", group.alert),       line("permission", group.permission),
                      line("marked", group.marked)};
    appendList(&lines, "items", group.dataitems);
    return lines;
}

QStringList describe(const PropertyTovikIot& root)
{
    QStringList lines{line("aux_flag", root.aux_flag),   line("host", root.host),
                      line("aux_value", root.aux_value), line("project", root.project),
                      line("email", root.email),         line("password", root.password)};
    appendList(&lines, "groups", root.groups);
    appendList(&lines, "dataitems", root.dataitems);
    return lines;
}

PropertyTovikIotDataItem filledItem(int number)
{
    PropertyTovikIotDataItem item;
    item.name = numbered("item", number);
    item.dataitem_id = numbered("id", number);
    item.type = QLatin1String("32Bit-INT");
    item.length = 2;
    item.value = QVariant(-5 - number);
    item.cloud_status = 3;
    item.alert = true;
    item.update_time = 1700000000 + number;
    item.marked = true;
    return item;
}

PropertyTovikIotGroup filledGroup(int number, int items)
{
    PropertyTovikIotGroup group;
    group.group_id = numbered("g", number);
    group.name = numbered("group", number);
    group.location = numbered("hall", number);
    group.ddLocation = numbered("rack", number);
    group.alert = true;
    group.permission = QLatin1String("R");
    group.marked = true;
    for (int i = 0; i < items; ++i)
        group.dataitems.append(filledItem(10 * number + i));
    return group;
}

PropertyTovikIot filledRoot(int groups, int items)
{
    PropertyTovikIot root;
    root.aux_flag = true;
    root.host = QLatin1String("https://other.example");
    root.aux_value = -7;
    root.project = QLatin1String("plant");
    root.email = QLatin1String("op@example.org");
    root.password = QLatin1String("secret");
    for (int i = 0; i < groups; ++i)
        root.groups.append(filledGroup(i, i % 3));
    for (int i = 0; i < items; ++i)
        root.dataitems.append(filledItem(100 + i));
    return root;
}

PropertyTovikIotDataItem itemWith(const QVariant& value)
{
    PropertyTovikIotDataItem item;
    item.value = value;
    return item;
}
