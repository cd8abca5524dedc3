#include "compat/cipher_list.h"

#include <QSslCipher>
#include <QSslConfiguration>

namespace cipher_list {

/// Qt keeps the ciphers of TLS 1.3 apart, and hands over no list at all of those before it when
/// there are none: OpenSSL's own then stands, from which Qt has taken those that it supports.
void leaveToOpenSsl(QSslConfiguration* ssl)
{
#if QT_VERSION >= 0x050C00
    const QList<QSslCipher> all = ssl->ciphers();
    if (all != QSslConfiguration::supportedCiphers())
        return;
    QList<QSslCipher> latest;
    for (int i = 0; i < all.size(); ++i) {
        if (all.at(i).protocol() == QSsl::TlsV1_3)
            latest.append(all.at(i));
    }
    ssl->setCiphers(latest);
#else
    Q_UNUSED(ssl);
#endif
}

} // namespace cipher_list
