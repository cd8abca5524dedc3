#ifndef TESTS_TWIN_SERVICE_UNDER_CONTROL_H
#define TESTS_TWIN_SERVICE_UNDER_CONTROL_H

#include <QByteArray>
#include <QString>

class PropertyTovikIot;

/// A running tovik-cloud with tests/twin/plant.json, and its control port.
class ServiceUnderControl
{
public:
    ServiceUnderControl(const QString& url, const QString& control_url);

    QString url() const { return url_; }
    /// The account, and an item of each type with the type's name as its own.
    PropertyTovikIot property() const;

    /// From now on the only fault in force; "" for none.
    void setFault(const QByteArray& fault);
    /// The value that the service has now, as JSON.
    QByteArray valueOf(const QByteArray& item_id);
    /// As a JSON value, from outside.
    void setValue(const QByteArray& item_id, const QByteArray& json);

private:
    /// Ends the program when the control port does not do what it is asked.
    QByteArray ask(const char* method, const QByteArray& path, const QByteArray& body);

    QString url_;
    QString control_url_;
};

#endif
