#ifndef TOOLS_HOST_SERVICE_CONFIGURE_DIALOGUE_H
#define TOOLS_HOST_SERVICE_CONFIGURE_DIALOGUE_H

#include "tools/host/service/configure_choice.h"

#include <QString>
#include <QVector>

namespace tovik_host::service {

/// Lets a user choose items, line by line: takes what was typed and gives what is to be shown. It
/// knows of no terminal, so that any will do.
class ConfigureDialogue
{
public:
    enum class State
    {
        open,
        done, ///< The user has chosen.
        quit  ///< The user wants nothing of it.
    };

    /// \param page how many items are shown at a time.
    ConfigureDialogue(const QVector<OfferedItem>& offered, int page);

    /// What is shown first.
    QString opening();
    QString prompt() const;
    /// Takes one line of the user and returns the answer, which ends with a line break.
    QString answer(const QString& typed);

    State state() const { return state_; }
    /// The chosen items in the catalogue's order.
    QVector<OfferedItem> chosen() const;

private:
    QString select(const QString& text, bool choose);
    /// The items that \a text names; \a problem says why there are none.
    QVector<int> itemsNamed(const QString& text, QString* problem) const;
    QString list(const QVector<int>& items);
    QString nextPage();
    QString search(const QString& text);
    QString preview() const;
    QString finish();
    QString line(int index) const;

    QVector<OfferedItem> offered_;
    QVector<bool> chosen_;
    QVector<int> listed_; ///< What the pages are of.
    int shown_ = 0;       ///< How many of them have been shown.
    int page_;
    State state_ = State::open;
};

} // namespace tovik_host::service

#endif
