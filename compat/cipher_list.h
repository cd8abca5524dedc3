#ifndef COMPAT_CIPHER_LIST_H
#define COMPAT_CIPHER_LIST_H

class QSslConfiguration;

/// \file
/// The ciphers that Qt hands to OpenSSL, by name, for every connection.
namespace cipher_list {

/// Has OpenSSL offer its own list up to TLS 1.2, if that is the one that \a ssl names: to look
/// every one of its 50 or so names up costs a tenth of a request. The service is offered the same
/// ciphers in the same order. A list that the host has made stays, as does any with a Qt
/// before 5.12, which would hand OpenSSL the rest of the list as if it were the whole.
void leaveToOpenSsl(QSslConfiguration* ssl);

} // namespace cipher_list

#endif
