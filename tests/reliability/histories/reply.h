#ifndef TESTS_RELIABILITY_HISTORIES_REPLY_H
#define TESTS_RELIABILITY_HISTORIES_REPLY_H

#include <QByteArray>
#include <QString>
#include <QStringList>

/// A value as JSON has them.
struct Json
{
    enum Kind
    {
        null,
        flag,
        number,
        text,
        other
    };

    const char* wire;
    Kind kind;
    double real = 0; ///< A flag's 1 or 0, too.
    const char* characters = "";
};

/// What the service answers: the bytes for the library, and what they mean for the model.
struct Reply
{
    enum Operation
    {
        login,
        groups,
        items,
        read,
        write
    };
    /// How far the common part gets.
    enum Common
    {
        not_json,
        no_code,
        invalid_code,
        code_of_service,
        good
    };
    /// What is wrong with an operation's own part.
    enum Own
    {
        fine,
        missing,
        invalid,
        no_list,
        no_token,
        nothing ///< A list that is empty by its number.
    };

    QByteArray body;
    bool is_broken = false; ///< The transport has failed; what has arrived is there all the same.
    Common common = good;
    int code = 0;
    Own own = fine;
    QString token;
    QStringList names; ///< Of the groups that are to be kept.
    Json value = {"null", Json::null};
};

namespace replies {

/// The operation that is asked for at \a url.
Reply::Operation operationAt(const QString& url);

/// How a reply can be, by names that a history is written with.
const QStringList& kinds();

/// A reply of one of kinds(), in one of its variants; any number is one.
/// \param serial makes tokens differ
Reply make(Reply::Operation operation, int kind, int variant, int serial);

} // namespace replies

#endif
