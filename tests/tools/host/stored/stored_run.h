#ifndef TESTS_TOOLS_HOST_STORED_STORED_RUN_H
#define TESTS_TOOLS_HOST_STORED_STORED_RUN_H

#include <QScopedPointer>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// Runs of the commands for stored configurations, with files in a folder of their own.
class StoredRun
{
protected:
    void newFolder();
    QString path(const char* name) const { return folder_->filePath(QString::fromUtf8(name)); }
    /// Writes a file of the folder and returns its path.
    QString write(const char* name, const QByteArray& bytes) const;
    static QByteArray read(const QString& path);
    /// Run a command and return its exit code; output_ and errors_ are what it has printed.
    int run(const QStringList& arguments);
    int convert(const QString& from, const QString& to, const QStringList& options = {});
    int show(const QString& file, const QStringList& options = {});

    QScopedPointer<QTemporaryDir> folder_;
    QString output_;
    QString errors_;
};

#endif
