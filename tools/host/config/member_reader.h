#ifndef TOOLS_HOST_CONFIG_MEMBER_READER_H
#define TOOLS_HOST_CONFIG_MEMBER_READER_H

#include "tools/host/config/json_lines.h"

#include <nlohmann/json.hpp>

#include <QString>
#include <QStringList>

namespace tovik_host::config {

/// A parsed file together with the lines of its members.
struct JsonFile
{
    QString path;
    nlohmann::json root;
    JsonLines lines;

    /// Throws UsageError: file, line and member of the value at \a pointer, and \a problem.
    [[noreturn]] void fail(const nlohmann::json::json_pointer& pointer,
                           const QString& problem) const;
    /// "file:line: member" for messages about the value at \a pointer.
    QString place(const nlohmann::json::json_pointer& pointer) const;
};

/// Reads the file \a path. Throws UsageError when it cannot be read or is no JSON.
JsonFile readJson(const QString& path);

/// Reads the members of one object of a configuration file.
///
/// Every function throws UsageError when the member is missing, of the wrong kind or out of
/// limits.
class MemberReader
{
public:
    using Pointer = nlohmann::json::json_pointer;

    /// \param file must outlive the reader.
    /// \param pointer the object; it must exist.
    MemberReader(const JsonFile& file, const Pointer& pointer);

    bool has(const char* name) const;
    QString requiredText(const char* name) const;
    QString optionalText(const char* name, const QString& fallback) const;
    int optionalNumber(const char* name, int fallback, int low, int high) const;
    bool optionalFlag(const char* name, bool fallback) const;
    /// Complains about the first member whose name is none of \a known.
    void refuseOthers(const QStringList& known) const;
    /// Throws UsageError about the member \a name.
    [[noreturn]] void fail(const char* name, const QString& problem) const;

private:
    const JsonFile& file_;
    const Pointer pointer_;
    const nlohmann::json& object_;
};

} // namespace tovik_host::config

#endif
