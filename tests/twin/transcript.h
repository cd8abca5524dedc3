#ifndef TESTS_TWIN_TRANSCRIPT_H
#define TESTS_TWIN_TRANSCRIPT_H

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>

/// \file
/// What the twin programs print: a line for each thing done, which says it, and what came of it.

/// Lines that follow begin with \a name.
void section(const char* name);
/// Prints one line. Control characters are escaped.
void say(const QByteArray& line);
/// Bytes in hexadecimal, "-" for none.
QByteArray hex(const QByteArray& bytes);
/// Type and value, a number with all its digits whichever Qt writes it.
QByteArray textOf(const QVariant& value);

/// Collects what the library logs, in place of Qt's output; the service's address becomes SERVICE.
void collectLog(const QString& service_url);
/// The lines since the last time.
QStringList takeLog();
/// Prints them, each as "log ...".
void sayLog();

#endif
