#include "compat/new_sockets.h"

#include <QElapsedTimer>
#include <QTest>

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

/// A descriptor that is closed with its owner.
class Descriptor
{
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    ~Descriptor() { reset(); }
    Q_DISABLE_COPY(Descriptor)

    int number() const { return number_; }
    void reset(int number = -1)
    {
        if (number_ >= 0)
            ::close(number_);
        number_ = number;
    }

private:
    int number_;
};

using DescriptorPtr = std::unique_ptr<Descriptor>;

int anyFile()
{
    return ::open("/dev/null", O_RDONLY);
}

std::vector<DescriptorPtr> openFiles(int count)
{
    std::vector<DescriptorPtr> files;
    for (int i = 0; i < count; ++i)
        files.push_back(std::make_unique<Descriptor>(anyFile()));
    return files;
}

/// An address with a port, as the kernel wants it.
struct Address
{
    explicit Address(const char* text, quint16 port = 0)
    {
        auto* ip4 = reinterpret_cast<sockaddr_in*>(&storage);
        auto* ip6 = reinterpret_cast<sockaddr_in6*>(&storage);
        if (inet_pton(AF_INET, text, &ip4->sin_addr) == 1) {
            ip4->sin_family = AF_INET;
            ip4->sin_port = htons(port);
            size = sizeof *ip4;
        } else if (inet_pton(AF_INET6, text, &ip6->sin6_addr) == 1) {
            ip6->sin6_family = AF_INET6;
            ip6->sin6_port = htons(port);
            size = sizeof *ip6;
        }
    }
    sockaddr* plain() { return reinterpret_cast<sockaddr*>(&storage); }

    sockaddr_storage storage{};
    socklen_t size = 0;
};

/// Takes connections, which nobody accepts.
class Listener
{
public:
    explicit Listener(const char* text, quint16 port = 0)
    {
        Address address(text, port);
        socket_.reset(::socket(address.storage.ss_family, SOCK_STREAM, 0));
        is_listening_ = ::bind(socket_.number(), address.plain(), address.size) == 0 &&
                        ::listen(socket_.number(), 100) == 0;
        ::getsockname(socket_.number(), address.plain(), &address.size);
        port_ = ntohs(reinterpret_cast<sockaddr_in*>(&address.storage)->sin_port);
    }
    bool isListening() const { return is_listening_; }
    quint16 port() const { return port_; }

private:
    Descriptor socket_;
    bool is_listening_ = false;
    quint16 port_ = 0;
};

DescriptorPtr connectTo(const char* text, quint16 port)
{
    Address address(text, port);
    auto socket = std::make_unique<Descriptor>(::socket(address.storage.ss_family, SOCK_STREAM, 0));
    if (::connect(socket->number(), address.plain(), address.size) != 0)
        socket->reset();
    return socket;
}

QList<QHostAddress> only(const char* address)
{
    return {QHostAddress(QString::fromLatin1(address))};
}

} // namespace

/// Which sockets of the process are taken for a request's.
class TestNewSockets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneMadeSince_data();
    void oneMadeSince();
    void severalMadeSince();
    void oneThatWasThereBefore();
    void oneThatWasThereBeforeAndConnectsSince();
    void oneToAnotherPort();
    void oneToAnotherAddress();
    void whatIsNoSocket();
    void oneAtANumberThatWasTaken();
    void oneBehindManyOthers();
    void aRememberedNumberIsFoundOnce();
    void theLastOfTheFreeNumbersIsFoundOnce();
    void numberZero();
    void theNumbersAreGivenBack();
    void withoutAFreeNumber();
    void manyDescriptorsCostLittle();
};

void TestNewSockets::oneMadeSince_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("IPv4") << QByteArray("127.0.0.1");
    QTest::newRow("IPv6") << QByteArray("::1");
}

void TestNewSockets::oneMadeSince()
{
    QFETCH(QByteArray, text);
    const char* address = text.constData();
    const Listener listener(address);
    if (!listener.isListening())
        QSKIP("this machine has no such addresses");
    const NewSockets sockets({});
    const Descriptor between(anyFile()); // as Qt opens some before its socket
    const DescriptorPtr socket = connectTo(address, listener.port());
    QCOMPARE(sockets.connectedTo(only(address), listener.port()), QVector<int>{socket->number()});
    QCOMPARE(sockets.connectedTo(only("127.0.0.9") + only(address), listener.port()),
             QVector<int>{socket->number()});
    QCOMPARE(sockets.connectedTo({}, listener.port()), QVector<int>());
}

void TestNewSockets::severalMadeSince()
{
    const Listener listener("127.0.0.1");
    const NewSockets sockets({});
    const DescriptorPtr first = connectTo("127.0.0.1", listener.port());
    const DescriptorPtr second = connectTo("127.0.0.1", listener.port());
    QCOMPARE(sockets.connectedTo(only("127.0.0.1"), listener.port()),
             (QVector<int>{first->number(), second->number()}));
}

void TestNewSockets::oneThatWasThereBefore()
{
    const Listener listener("127.0.0.1");
    const DescriptorPtr socket = connectTo("127.0.0.1", listener.port());
    for (const QVector<int>& numbers : {QVector<int>(), QVector<int>{socket->number()}}) {
        const NewSockets sockets(numbers);
        QCOMPARE(sockets.connectedTo(only("127.0.0.1"), listener.port()), QVector<int>());
    }
}

void TestNewSockets::oneThatWasThereBeforeAndConnectsSince()
{
    const Listener listener("127.0.0.1");
    const Descriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
    const NewSockets sockets({socket.number()});
    Address address("127.0.0.1", listener.port());
    QCOMPARE(::connect(socket.number(), address.plain(), address.size), 0);
    QCOMPARE(sockets.connectedTo(only("127.0.0.1"), listener.port()), QVector<int>());
}

void TestNewSockets::oneToAnotherPort()
{
    const Listener listener("127.0.0.1");
    const Listener other("127.0.0.1");
    const NewSockets sockets({});
    const DescriptorPtr socket = connectTo("127.0.0.1", other.port());
    QVERIFY(socket->number() >= 0);
    QCOMPARE(sockets.connectedTo(only("127.0.0.1"), listener.port()), QVector<int>());
}

void TestNewSockets::oneToAnotherAddress()
{
    const Listener listener("127.0.0.1");
    const Listener other("127.0.0.2", listener.port());
    QVERIFY(other.isListening());
    const NewSockets sockets({});
    const DescriptorPtr socket = connectTo("127.0.0.2", other.port());
    QVERIFY(socket->number() >= 0);
    QCOMPARE(sockets.connectedTo(only("127.0.0.1"), listener.port()), QVector<int>());
}

void TestNewSockets::whatIsNoSocket()
{
    const Listener listener("127.0.0.1");
    const NewSockets sockets({});
    const Descriptor file(anyFile());
    const Descriptor unconnected(::socket(AF_INET, SOCK_STREAM, 0));
    int pair[2] = {-1, -1};
    QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM, 0, pair), 0);
    const Descriptor one(pair[0]);
    const Descriptor other(pair[1]);
    QCOMPARE(sockets.connectedTo(only("127.0.0.1"), listener.port()), QVector<int>());
}

/// Another thread has closed what stood there, and the kernel gives the lowest free number.
void TestNewSockets::oneAtANumberThatWasTaken()
{
    const Listener listener("127.0.0.1");
    Descriptor taken(anyFile());
    const int number = taken.number();
    const NewSockets unaware({});
    const NewSockets aware({number});
    taken.reset();
    const DescriptorPtr socket = connectTo("127.0.0.1", listener.port());
    QCOMPARE(socket->number(), number);
    QCOMPARE(unaware.connectedTo(only("127.0.0.1"), listener.port()), QVector<int>());
    QCOMPARE(aware.connectedTo(only("127.0.0.1"), listener.port()), QVector<int>{number});
}

/// So many others have been opened before it that it does not get one of the lowest numbers.
void TestNewSockets::oneBehindManyOthers()
{
    const Listener listener("127.0.0.1");
    std::vector<DescriptorPtr> others = openFiles(21);
    const int last = others.back()->number();
    others.clear();
    const NewSockets unaware({});
    const NewSockets aware({last});
    others = openFiles(20);
    const DescriptorPtr socket = connectTo("127.0.0.1", listener.port());
    QCOMPARE(socket->number(), last);
    QCOMPARE(unaware.connectedTo(only("127.0.0.1"), listener.port()), QVector<int>());
    QCOMPARE(aware.connectedTo(only("127.0.0.1"), listener.port()), QVector<int>{last});
}

void TestNewSockets::aRememberedNumberIsFoundOnce()
{
    const Listener listener("127.0.0.1");
    const int lowest = Descriptor(anyFile()).number();
    const NewSockets sockets({lowest});
    const DescriptorPtr socket = connectTo("127.0.0.1", listener.port());
    QCOMPARE(sockets.connectedTo(only("127.0.0.1"), listener.port()), QVector<int>{lowest});
}

void TestNewSockets::theLastOfTheFreeNumbersIsFoundOnce()
{
    const Listener listener("127.0.0.1");
    std::vector<DescriptorPtr> others = openFiles(16);
    const int last = others.back()->number();
    others.clear();
    const NewSockets sockets({last});
    others = openFiles(15);
    const DescriptorPtr socket = connectTo("127.0.0.1", listener.port());
    QCOMPARE(socket->number(), last);
    QCOMPARE(sockets.connectedTo(only("127.0.0.1"), listener.port()), QVector<int>{last});
}

/// A host without a console may have closed its standard input.
void TestNewSockets::numberZero()
{
    const Listener listener("127.0.0.1");
    const Descriptor input(::dup(STDIN_FILENO));
    ::close(STDIN_FILENO);
    QVector<int> found;
    {
        const NewSockets sockets({});
        const DescriptorPtr socket = connectTo("127.0.0.1", listener.port());
        found = sockets.connectedTo(only("127.0.0.1"), listener.port());
    }
    ::dup2(input.number(), STDIN_FILENO);
    QCOMPARE(found, QVector<int>{STDIN_FILENO});
}

void TestNewSockets::theNumbersAreGivenBack()
{
    const Descriptor before(anyFile());
    const int lowest = Descriptor(anyFile()).number();
    const NewSockets sockets({});
    QCOMPARE(Descriptor(anyFile()).number(), lowest);
}

void TestNewSockets::withoutAFreeNumber()
{
    const Listener listener("127.0.0.1");
    const DescriptorPtr socket = connectTo("127.0.0.1", listener.port());
    rlimit limit{};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    rlimit none = limit;
    none.rlim_cur = 0;
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const NewSockets sockets({socket->number()});
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    QCOMPARE(sockets.connectedTo(only("127.0.0.1"), listener.port()), QVector<int>());
}

void TestNewSockets::manyDescriptorsCostLittle()
{
    const rlim_t most = 6000;
    rlimit limit{};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    limit.rlim_cur = std::max(limit.rlim_cur, most);
    if (limit.rlim_max < most || ::setrlimit(RLIMIT_NOFILE, &limit) != 0)
        QSKIP("this user may not have so many descriptors");
    const Listener listener("127.0.0.1");
    std::vector<DescriptorPtr> many;
    for (int i = 0; i < 5000; ++i)
        many.push_back(std::make_unique<Descriptor>(anyFile()));
    QVERIFY(many.back()->number() >= 5000);
    std::vector<qint64> costs;
    for (int i = 0; i < 21; ++i) {
        QElapsedTimer timer;
        timer.start();
        const NewSockets sockets({});
        qint64 cost = timer.nsecsElapsed();
        const DescriptorPtr socket = connectTo("127.0.0.1", listener.port());
        timer.start();
        QCOMPARE(sockets.connectedTo(only("127.0.0.1"), listener.port()).size(), 1);
        costs.push_back(cost + timer.nsecsElapsed());
    }
    std::sort(costs.begin(), costs.end());
    const qint64 median = costs[costs.size() / 2];
    QVERIFY2(median < 1000000, qPrintable(QString::number(median)));
    qInfo("%lld ns with 5,000 descriptors", static_cast<long long>(median));
}

QTEST_APPLESS_MAIN(TestNewSockets)
#include "tst_new_sockets.moc"
