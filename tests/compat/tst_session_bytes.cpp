#include "compat/session_bytes.h"

#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <QTest>

#include <memory>
#include <vector>

namespace {

struct OpensslDeleter
{
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(X509* certificate) const { X509_free(certificate); }
    void operator()(SSL* ssl) const { SSL_free(ssl); }
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
    void operator()(SSL_SESSION* session) const { SSL_SESSION_free(session); }
};

template <typename T>
using Owned = std::unique_ptr<T, OpensslDeleter>;

Owned<EVP_PKEY> makeKey(const QByteArray& type)
{
    if (type == "RSA")
        return Owned<EVP_PKEY>(EVP_RSA_gen(2048));
    if (type == "P-256")
        return Owned<EVP_PKEY>(EVP_EC_gen("P-256"));
    return Owned<EVP_PKEY>(EVP_PKEY_Q_keygen(nullptr, nullptr, type.constData()));
}

/// \param issuer null: signed by itself
Owned<X509> makeCertificate(EVP_PKEY* key, X509* issuer, EVP_PKEY* issuer_key)
{
    Owned<X509> certificate(X509_new());
    X509* raw = certificate.get();
    X509_set_version(raw, X509_VERSION_3);
    X509_gmtime_adj(X509_getm_notBefore(raw), -3600);
    X509_gmtime_adj(X509_getm_notAfter(raw), 3600);
    X509_set_pubkey(raw, key);
    const unsigned char name[] = "service";
    X509_NAME_add_entry_by_txt(X509_get_subject_name(raw), "CN", MBSTRING_ASC, name, -1, -1, 0);
    X509_set_issuer_name(raw, X509_get_subject_name(issuer ? issuer : raw));
    const bool has_own_digest = EVP_PKEY_get_id(issuer_key) == EVP_PKEY_ED25519;
    X509_sign(raw, issuer_key, has_own_digest ? nullptr : EVP_sha256());
    return certificate;
}

/// What a service is, and what its sessions look like.
struct Kind
{
    int version;
    QByteArray key;
    int issuers; ///< In the chain that it shows.
    bool has_tickets;
};

/// A client and a service in this process, over memory.
class Peers
{
public:
    explicit Peers(const Kind& kind)
        : service_(SSL_CTX_new(TLS_server_method())),
          client_(SSL_CTX_new(TLS_client_method()))
    {
        SSL_CTX_set_min_proto_version(service_.get(), kind.version);
        SSL_CTX_set_max_proto_version(service_.get(), kind.version);
        if (!kind.has_tickets)
            SSL_CTX_set_options(service_.get(), SSL_OP_NO_TICKET);
        const unsigned char name[] = "test";
        SSL_CTX_set_session_id_context(service_.get(), name, sizeof name);
        std::vector<Owned<EVP_PKEY>> keys;
        std::vector<Owned<X509>> certificates;
        for (int i = 0; i <= kind.issuers; ++i) {
            keys.push_back(makeKey(kind.key));
            X509* issuer = i > 0 ? certificates.back().get() : nullptr;
            EVP_PKEY* issuer_key = keys[i > 0 ? keys.size() - 2 : 0].get();
            certificates.push_back(makeCertificate(keys.back().get(), issuer, issuer_key));
        }
        SSL_CTX_use_certificate(service_.get(), certificates.back().get());
        SSL_CTX_use_PrivateKey(service_.get(), keys.back().get());
        for (int i = kind.issuers - 1; i >= 0; --i)
            SSL_CTX_add1_chain_cert(service_.get(), certificates[std::size_t(i)].get());
        SSL_CTX_set_verify(client_.get(), SSL_VERIFY_NONE, nullptr);
        SSL_CTX_set_session_cache_mode(client_.get(), SSL_SESS_CACHE_CLIENT);
    }

    /// Connects and says something in both directions; returns the session, empty if it failed.
    /// \param offered a session; none if it is empty
    QByteArray connect(const QByteArray& offered, bool* is_resumed)
    {
        const Owned<SSL> service(SSL_new(service_.get()));
        const Owned<SSL> client(SSL_new(client_.get()));
        BIO* one = nullptr;
        BIO* other = nullptr;
        BIO_new_bio_pair(&one, 0, &other, 0);
        SSL_set_bio(service.get(), one, one);
        SSL_set_bio(client.get(), other, other);
        SSL_set_accept_state(service.get());
        SSL_set_connect_state(client.get());
        if (!offered.isEmpty() && !offer(client.get(), offered))
            return QByteArray();
        for (int i = 0; i < 10 && !isDone(service.get(), client.get()); ++i) {
            SSL_do_handshake(client.get());
            SSL_do_handshake(service.get());
        }
        if (!isDone(service.get(), client.get()) || !exchange(service.get(), client.get()))
            return QByteArray();
        *is_resumed = SSL_session_reused(client.get()) == 1;
        SSL_shutdown(client.get());
        SSL_shutdown(service.get());
        return bytesOf(SSL_get_session(client.get()));
    }

    static QByteArray bytesOf(SSL_SESSION* session)
    {
        unsigned char* bytes = nullptr;
        const int size = i2d_SSL_SESSION(session, &bytes);
        const QByteArray copy(reinterpret_cast<const char*>(bytes), size);
        OPENSSL_free(bytes);
        return copy;
    }

private:
    static bool offer(SSL* client, const QByteArray& offered)
    {
        const auto* bytes = reinterpret_cast<const unsigned char*>(offered.constData());
        const Owned<SSL_SESSION> session(d2i_SSL_SESSION(nullptr, &bytes, offered.size()));
        return session && SSL_set_session(client, session.get()) == 1;
    }
    static bool isDone(SSL* service, SSL* client)
    {
        return SSL_is_init_finished(service) == 1 && SSL_is_init_finished(client) == 1;
    }
    static bool exchange(SSL* service, SSL* client)
    {
        char byte = 'x';
        return SSL_write(client, &byte, 1) == 1 && SSL_read(service, &byte, 1) == 1 &&
               SSL_write(service, &byte, 1) == 1 && SSL_read(client, &byte, 1) == 1;
    }

    Owned<SSL_CTX> service_;
    Owned<SSL_CTX> client_;
};

Owned<SSL_SESSION> decoded(const QByteArray& bytes)
{
    const auto* at = reinterpret_cast<const unsigned char*>(bytes.constData());
    return Owned<SSL_SESSION>(d2i_SSL_SESSION(nullptr, &at, bytes.size()));
}

/// A sequence in DER.
QByteArray sequence(const QByteArray& elements)
{
    QByteArray length;
    for (int rest = elements.size(); rest > 0; rest >>= 8)
        length.prepend(char(rest & 0xFF));
    if (elements.size() >= 0x80)
        length.prepend(char(0x80 | length.size()));
    return '\x30' + length + elements;
}

const QByteArray first_elements =
    QByteArray::fromHex("020101 02020304 04021301 0400 0430") + QByteArray(48, 'k');
const QByteArray times = QByteArray::fromHex("a103020101 a203020102");
const QByteArray certificate = QByteArray::fromHex("a33c") + QByteArray(60, 'c');
const QByteArray context = QByteArray::fromHex("a402 0400");

} // namespace

/// The certificate is taken out of a session, which is as good as before for its purpose.
class TestSessionBytes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void resumesWithout_data();
    void resumesWithout();
    void takesOutTheOneElement();
    void lengths_data();
    void lengths();
    void keepsWhatLooksOtherwise_data();
    void keepsWhatLooksOtherwise();
    void keepsEveryDamagedSession();
};

void TestSessionBytes::resumesWithout_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<int>("issuers");
    QTest::addColumn<bool>("has_tickets");
    for (const int version : {TLS1_2_VERSION, TLS1_3_VERSION}) {
        const QByteArray name = version == TLS1_2_VERSION ? "TLS 1.2, " : "TLS 1.3, ";
        for (const char* key : {"RSA", "P-256", "ED25519"})
            QTest::newRow((name + key).constData()) << version << QByteArray(key) << 0 << true;
        QTest::newRow((name + "a chain of three").constData())
            << version << QByteArray("RSA") << 2 << true;
        QTest::newRow((name + "the service keeps the session").constData())
            << version << QByteArray("P-256") << 0 << false;
    }
}

void TestSessionBytes::resumesWithout()
{
    QFETCH(int, version);
    QFETCH(QByteArray, key);
    QFETCH(int, issuers);
    QFETCH(bool, has_tickets);
    Peers peers({version, key, issuers, has_tickets});
    bool is_resumed = true;
    const QByteArray whole = peers.connect(QByteArray(), &is_resumed);
    QVERIFY(!whole.isEmpty() && !is_resumed);
    QVERIFY(SSL_SESSION_get0_peer(decoded(whole).get()));

    QByteArray session = session_bytes::withoutCertificate(whole);
    QVERIFY(session.size() < whole.size() - 100);
    const Owned<SSL_SESSION> read = decoded(session);
    QVERIFY(read);
    QVERIFY(!SSL_SESSION_get0_peer(read.get()));
    QCOMPARE(Peers::bytesOf(read.get()), session);
    // Again and again, each time with what the time before has left.
    for (int i = 0; i < 3; ++i) {
        const QByteArray next = peers.connect(session, &is_resumed);
        QVERIFY(!next.isEmpty());
        QVERIFY(is_resumed);
        QCOMPARE(session_bytes::withoutCertificate(next), next);
        session = next;
    }
}

void TestSessionBytes::takesOutTheOneElement()
{
    QCOMPARE(
        session_bytes::withoutCertificate(sequence(first_elements + times + certificate + context)),
        sequence(first_elements + times + context));
}

/// Around the bounds at which the length of the outer sequence takes another byte.
void TestSessionBytes::lengths_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {1, 50, 127, 128, 130, 200, 255, 256, 300, 65400, 65535, 65536, 70000})
        QTest::addRow("a ticket of %d bytes", size) << size;
}

void TestSessionBytes::lengths()
{
    QFETCH(int, size);
    const QByteArray ticket = '\xaa' + sequence(QByteArray(size, 't')).mid(1);
    const QByteArray without = sequence(first_elements + times + ticket);
    QCOMPARE(
        session_bytes::withoutCertificate(sequence(first_elements + times + certificate + ticket)),
        without);
    QCOMPARE(session_bytes::withoutCertificate(without), without);
}

void TestSessionBytes::keepsWhatLooksOtherwise_data()
{
    QTest::addColumn<QByteArray>("session");
    const auto row = [](const char* name, const QByteArray& session) {
        QTest::newRow(name) << session;
    };
    const QByteArray good = sequence(first_elements + times + certificate + context);
    row("nothing", QByteArray());
    row("one byte", QByteArray("\x30"));
    row("no certificate", sequence(first_elements + times + context));
    row("a set in place of the sequence", "\x31" + good.mid(1));
    row("something after it", good + 'x');
    row("cut", good.left(good.size() - 1));
    row("a length with a zero in front", QByteArray::fromHex("308200") + good.mid(2));
    row("a long length of a short one",
        QByteArray::fromHex("308111") +
            QByteArray::fromHex("020101 02020304 04021301 0400 0400 a300"));
    row("a length without an end", QByteArray::fromHex("3080") + good.mid(3));
    row("a length without an end that reads as 128", QByteArray::fromHex("3080") + first_elements +
                                                         times + QByteArray::fromHex("a335") +
                                                         QByteArray(53, 'c'));
    row("a length of four bytes", QByteArray::fromHex("30840000008b") + good.mid(3));
    row("an element beyond the end",
        sequence(first_elements + times + QByteArray::fromHex("a37f") + QByteArray(60, 'c')));
    row("two certificates", sequence(first_elements + certificate + certificate));
    row("certificate before the times", sequence(first_elements + certificate + times));
    row("certificate first", sequence(certificate + first_elements + times));
    row("no master key", sequence(first_elements.left(first_elements.size() - 50) + times +
                                  certificate + certificate));
    row("a universal element among the optional ones",
        sequence(first_elements + times + certificate + QByteArray::fromHex("0400")));
    row("a tag of two bytes",
        sequence(first_elements + times + certificate + QByteArray::fromHex("bf2100")));
}

void TestSessionBytes::keepsWhatLooksOtherwise()
{
    QFETCH(QByteArray, session);
    QCOMPARE(session_bytes::withoutCertificate(session), session);
}

void TestSessionBytes::keepsEveryDamagedSession()
{
    const QByteArray good = sequence(first_elements + times + certificate + context);
    QVERIFY(session_bytes::withoutCertificate(good) != good);
    for (int size = 0; size < good.size(); ++size)
        QCOMPARE(session_bytes::withoutCertificate(good.left(size)), good.left(size));
}

QTEST_APPLESS_MAIN(TestSessionBytes)
#include "tst_session_bytes.moc"
