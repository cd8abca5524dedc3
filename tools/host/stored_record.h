#ifndef TOOLS_HOST_STORED_RECORD_H
#define TOOLS_HOST_STORED_RECORD_H

#include "tools/host/stored_value.h"

#include <QString>

#include <vector>

/// \file
/// The driver's configuration record as a stream holds it.
///
/// Each structure says its members once, in the order of the stream, in visit(): it hands name and
/// member to a visitor until that returns false. Reading, writing, JSON and the view are visitors.
namespace tovik_host {

struct StoredItem
{
    QString name = QString();
    QString dataitem_id = QString();
    QString type = QStringLiteral("16Bit-INT");
    qint32 length = 1;
    StoredValue value = StoredValue();
    qint32 cloud_status = 0;
    bool alert = false;
    qint32 update_time = 0;
    bool marked = false;

    static const int members = 9;
    /// Members that a damaged stream still gave; the others have their defaults.
    int known = members;

    template <typename Self, typename Visitor>
    static bool visit(Self& self, Visitor& visitor)
    {
        return visitor("name", self.name) && visitor("dataitem_id", self.dataitem_id) &&
               visitor("type", self.type) && visitor("length", self.length) &&
               visitor("value", self.value) && visitor("cloud_status", self.cloud_status) &&
               visitor("alert", self.alert) && visitor("update_time", self.update_time) &&
               visitor("marked", self.marked);
    }
};

struct StoredGroup
{
    QString group_id = QString();
    QString name = QString();
    QString location = QString();
    QString ddLocation = QString(); ///< Named as in the service's replies and in the record.
    bool alert = false;
    QString permission = QStringLiteral("RW");
    bool marked = false;
    std::vector<StoredItem> dataitems = {};

    static const int members = 8;
    int known = members; ///< As an item's; a list counts once its own count is known.

    template <typename Self, typename Visitor>
    static bool visit(Self& self, Visitor& visitor)
    {
        return visitor("group_id", self.group_id) && visitor("name", self.name) &&
               visitor("location", self.location) && visitor("ddLocation", self.ddLocation) &&
               visitor("alert", self.alert) && visitor("permission", self.permission) &&
               visitor("marked", self.marked) && visitor("dataitems", self.dataitems);
    }
};

/// Texts of a record that are not shown.
enum class HiddenTexts
{
    none,
    password,
    account ///< All up to the password, one of which may hold it if a length is wrong.
};

/// Whether the record's text of that name is hidden.
bool isHidden(const char* name, HiddenTexts hidden);

struct StoredRecord
{
    bool aux_flag = false;
    QString host = QStringLiteral("https://cloud.example");
    qint32 aux_value = 0;
    QString project = QString();
    QString email = QString();
    QString password = QString();
    std::vector<StoredGroup> groups = {};
    std::vector<StoredItem> dataitems = {};

    static const int members = 8;
    int known = members; ///< As a group's.

    template <typename Self, typename Visitor>
    static bool visit(Self& self, Visitor& visitor)
    {
        return visitor("aux_flag", self.aux_flag) && visitor("host", self.host) &&
               visitor("aux_value", self.aux_value) && visitor("project", self.project) &&
               visitor("email", self.email) && visitor("password", self.password) &&
               visitor("groups", self.groups) && visitor("dataitems", self.dataitems);
    }
};

/// The way to a member, for messages: "groups[2].dataitems[0].value".
class MemberPath
{
public:
    void enter(const char* name) { parts_.push_back({name, -1}); }
    void enter(int index) { parts_.push_back({nullptr, index}); }
    void leave() { parts_.pop_back(); }
    QString text() const;

private:
    struct Part
    {
        const char* name;
        int index;
    };

    std::vector<Part> parts_;
};

} // namespace tovik_host

#endif
