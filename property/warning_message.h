#ifndef PROPERTY_WARNING_MESSAGE_H
#define PROPERTY_WARNING_MESSAGE_H

#include "compat/export.h"

#include <QString>

/// Shows an application-modal message box with the critical icon and one button, Ok, and returns
/// when the user has closed it. Needs a `QApplication`; call it from the main thread.
TOVIK_EXPORT void TovikIotWarningMsg(QString text, QString informative_text);

#endif
