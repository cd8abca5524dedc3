#ifndef CLOUD_CONVERSATION_H
#define CLOUD_CONVERSATION_H

#include "cloud/service_message.h"
#include "property/property_tovik_iot.h"

#include <QList>
#include <QScopedPointer>
#include <QString>
#include <QVariant>

#include <functional>

class Post;
struct PostMemory;

/// The five operations of the service, each once: a request, its reply taken apart, the lines that
/// it logs, and an outcome that says how it ended and why.
///
/// An operation runs an event loop in the caller's thread until the reply has arrived, without a
/// time limit. A reply that is JSON but no object, or a list with an element that is none, raises
/// picojson's `std::runtime_error`.
class Conversation
{
public:
    /// How far the loading of a catalogue is.
    struct Progress
    {
        int groups_known;  ///< In the service's list, those without id or name not counted.
        int groups_loaded; ///< Whose items are there.
        int items;         ///< In all loaded groups.
    };

    /// Hears of the progress, in the thread of the operation.
    typedef std::function<void(const Progress&)> Listener;

    /// \param property says where the service is; not owned, and asked before every request.
    explicit Conversation(const PropertyTovikIot* property);
    ~Conversation();

    /// Logs in.
    /// \param token receives the service's; it stays as it is when the reply has none.
    service::Outcome login(const QString& project, const QString& email, const QString& password,
                           QString* token) const;
    /// Replaces \a groups by the service's, items included: those that were loaded before a failure
    /// stay.
    service::Outcome groupList(const QString& token, QList<PropertyTovikIotGroup>* groups,
                               const Listener& listener = Listener()) const;
    /// Appends the service's items of \a group to it.
    service::Outcome dataitemList(const QString& token, PropertyTovikIotGroup* group) const;
    /// Reads the value of \a item into it. A value that is not of the item's type leaves it as it
    /// is; the reason says so.
    service::Outcome readValue(const QString& token, PropertyTovikIotDataItem* item) const;
    /// Writes one value. Not a number and the infinities raise picojson's `std::overflow_error`.
    service::Outcome writeValue(const QString& token, const PropertyTovikIotDataItem& item,
                                const QVariant& value) const;

    /// \name writeValue() in two halves
    /// @{

    /// Sends a write; the caller takes the post over.
    Post* postWrite(const QString& token, const PropertyTovikIotDataItem& item,
                    const QVariant& value) const;
    /// What became of it. To be called once, when the post has ended.
    service::Outcome takeWrite(Post* post) const;
    /// @}

    /// What its posts hand on to each other, for others to the same service.
    PostMemory* memory() const { return memory_.data(); }

private:
    Q_DISABLE_COPY(Conversation)

    QString urlOf(const service::Operation& operation) const;
    service::Outcome call(const service::Operation& operation, const picojson::object& members,
                          picojson::object* reply) const;

    const PropertyTovikIot* property_;
    const QScopedPointer<PostMemory> memory_;
};

#endif
