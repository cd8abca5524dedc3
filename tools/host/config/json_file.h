#ifndef TOOLS_HOST_CONFIG_JSON_FILE_H
#define TOOLS_HOST_CONFIG_JSON_FILE_H

#include "tools/host/terminal/text.h"

#include <nlohmann/json.hpp>

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <initializer_list>

namespace tovik_host::config {

/// A parsed file, and the lines of what is in it.
struct JsonFile
{
    QString path;
    nlohmann::json root;
    /// The line, from 1 on, of everything by its path, such as "items[2].type"; of a member that of
    /// its name.
    QHash<QString, int> lines;
};

/// Throws UsageError with the line of what is no JSON, of a member that stands twice in one object,
/// and if brackets stand in one another deeper than any file of ours has them.
/// \param path how messages name the text
JsonFile parseJson(const QString& path, const QByteArray& text);
/// Reads the file \a path, of which \a what says what it should be. Throws UsageError.
JsonFile readJson(const QString& path, const QString& what = u"configuration"_s);

/// A value of a file, and where it stands. What is wrong with it, or missing, is a UsageError with
/// file, line and the value's path.
class JsonPlace
{
public:
    /// The whole of \a file, which must outlive the place.
    explicit JsonPlace(const JsonFile& file) : JsonPlace(file, file.root, QString()) {}

    const nlohmann::json& json() const { return *json_; }
    bool has(const char* name) const { return json_->is_object() && json_->contains(name); }
    JsonPlace at(const char* name) const;
    QVector<JsonPlace> elements() const;
    /// Refuses all members of the object but these.
    void allowOnly(const QStringList& names) const;
    void allowOnly(std::initializer_list<const char*> names) const;

    QString text() const;
    qint64 number(qint64 low, qint64 high) const;
    bool flag() const;
    /// A text that is not empty.
    QString requiredText(const char* name) const;
    QString optionalText(const char* name, const QString& fallback = QString()) const;
    int optionalNumber(const char* name, int fallback, int low, int high) const;
    bool optionalFlag(const char* name, bool fallback) const;

    /// "file:line: path", for messages.
    QString where() const;
    [[noreturn]] void fail(const QString& problem) const;

private:
    JsonPlace(const JsonFile& file, const nlohmann::json& json, const QString& path)
        : file_(&file),
          json_(&json),
          path_(path)
    {}

    const JsonFile* file_;
    const nlohmann::json* json_;
    QString path_;
};

} // namespace tovik_host::config

#endif
