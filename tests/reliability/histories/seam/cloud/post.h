#ifndef TESTS_RELIABILITY_HISTORIES_SEAM_CLOUD_POST_H
#define TESTS_RELIABILITY_HISTORIES_SEAM_CLOUD_POST_H

#include <QObject>
#include <QString>

#include <string>

class TrafficListener;

struct PostMemory
{
    TrafficListener* listener = nullptr; ///< Nobody listens to a history.
};

/// Stands in the place of the library's post, and has no network: it is on its way until the
/// history says what the service answers. The rest is the same: signals in the same order, a nested
/// event loop, and an end with the thread.
class Post : public QObject
{
    Q_OBJECT

public:
    Post(const QString& body, const QString& url, PostMemory* memory);
    ~Post();

    void wait();
    std::string takeBytes();
    bool hasFailed() const { return has_failed_; }
    QString problem() const;

    /// What the service does about it; to be called in the post's thread.
    void finish(const QByteArray& bytes, bool has_failed);

Q_SIGNALS:
    void EmitFinished();
    void finished();

private:
    Q_DISABLE_COPY(Post)

    QByteArray bytes_;
    bool has_failed_;
};

#endif
