#ifndef TOOLS_HOST_TERMINAL_LINE_INPUT_H
#define TOOLS_HOST_TERMINAL_LINE_INPUT_H

#include "tools/host/terminal/output.h"
#include "tools/host/terminal/unix_signals.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace tovik_host::terminal {

/// Asks the user for lines, on any terminal or through a pipe, and hears signals meanwhile.
class LineInput
{
public:
    /// \param descriptor read from; not closed by this class.
    /// \param prompts where the questions go; outlives this object, as \a unix_signals does.
    LineInput(int descriptor, Output& prompts, const UnixSignals& unix_signals)
        : descriptor_(descriptor),
          prompts_(prompts),
          unix_signals_(unix_signals)
    {}

    /// The next line, without its end; nothing at the end of the input and after a signal.
    std::optional<QString> ask(const QString& prompt);
    /// As ask(), while the terminal does not show what is typed.
    std::optional<QString> askSecretly(const QString& prompt);
    /// Whether there is a user to ask.
    bool isTerminal() const;

private:
    bool waitForInput();

    int descriptor_;
    Output& prompts_;
    const UnixSignals& unix_signals_;
    QByteArray pending_;
};

} // namespace tovik_host::terminal

#endif
