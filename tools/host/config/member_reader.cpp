#include "tools/host/config/member_reader.h"

#include "tools/host/terminal/exit_code.h"

#include <QFile>

namespace tovik_host::config {

namespace {

/// "items[2].type" of "/items/2/type".
QString memberPath(nlohmann::json::json_pointer pointer)
{
    QString path;
    while (!pointer.empty()) {
        const QString part = QString::fromStdString(pointer.back());
        pointer.pop_back();
        bool is_index = false;
        part.toUInt(&is_index);
        const QString shown = is_index ? QStringLiteral("[%1]").arg(part) : part;
        const bool needs_point = !path.isEmpty() && !path.startsWith(QLatin1Char('['));
        path = shown + (needs_point ? QStringLiteral(".") : QString()) + path;
    }
    return path;
}

} // namespace

JsonFile readJson(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw terminal::UsageError(QStringLiteral("cannot read the configuration \"%1\": %2")
                                       .arg(path, file.errorString()));
    }
    const std::string text = file.readAll().toStdString();
    JsonFile json{path, nlohmann::json(), findJsonLines(text)};
    if (!json.lines.problem.empty()) {
        throw terminal::UsageError(QStringLiteral("%1:%2: %3")
                                       .arg(path)
                                       .arg(json.lines.problem_line)
                                       .arg(QString::fromStdString(json.lines.problem)));
    }
    json.root = nlohmann::json::parse(text);
    return json;
}

QString JsonFile::place(const nlohmann::json::json_pointer& pointer) const
{
    const auto line = lines.lines.find(pointer.to_string());
    const int number = line == lines.lines.end() ? 1 : line->second;
    const QString start = QStringLiteral("%1:%2: ").arg(path).arg(number);
    return pointer.empty() ? start.chopped(2) : start + memberPath(pointer);
}

void JsonFile::fail(const nlohmann::json::json_pointer& pointer, const QString& problem) const
{
    throw terminal::UsageError(place(pointer) + QStringLiteral(": ") + problem);
}

MemberReader::MemberReader(const JsonFile& file, const Pointer& pointer)
    : file_(file),
      pointer_(pointer),
      object_(file.root.at(pointer))
{
    if (!object_.is_object())
        file_.fail(pointer_, QStringLiteral("must be an object: { ... }"));
}

bool MemberReader::has(const char* name) const
{
    return object_.contains(name);
}

QString MemberReader::requiredText(const char* name) const
{
    if (!has(name)) {
        file_.fail(pointer_,
                   QStringLiteral("the member \"%1\" is missing").arg(QLatin1String(name)));
    }
    const QString text = optionalText(name, QString());
    if (text.isEmpty())
        fail(name, QStringLiteral("must not be empty"));
    return text;
}

QString MemberReader::optionalText(const char* name, const QString& fallback) const
{
    if (!has(name))
        return fallback;
    const nlohmann::json& value = object_.at(name);
    if (!value.is_string())
        fail(name, QStringLiteral("must be a text in quotes"));
    return QString::fromStdString(value.get<std::string>());
}

int MemberReader::optionalNumber(const char* name, int fallback, int low, int high) const
{
    if (!has(name))
        return fallback;
    const nlohmann::json& value = object_.at(name);
    const bool fits = value.is_number_integer() && value >= low && value <= high;
    if (!fits)
        fail(name, QStringLiteral("must be a whole number from %1 to %2").arg(low).arg(high));
    return value.get<int>();
}

bool MemberReader::optionalFlag(const char* name, bool fallback) const
{
    if (!has(name))
        return fallback;
    const nlohmann::json& value = object_.at(name);
    if (!value.is_boolean())
        fail(name, QStringLiteral("must be true or false"));
    return value.get<bool>();
}

void MemberReader::refuseOthers(const QStringList& known) const
{
    for (const auto& member : object_.items()) {
        if (known.contains(QString::fromStdString(member.key())))
            continue;
        fail(member.key().c_str(), QStringLiteral("is no member of this object; it may have: %1")
                                       .arg(known.join(QStringLiteral(", "))));
    }
}

void MemberReader::fail(const char* name, const QString& problem) const
{
    file_.fail(pointer_ / std::string(name), problem);
}

} // namespace tovik_host::config
