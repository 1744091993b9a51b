#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <openssl/ssl.h>
#include <string>
#include <thread>

namespace orvane::test {

struct OpenSSLDeleter {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
  void operator()(SSL* connection) const { SSL_free(connection); }
};
template <class T>
using OpenSSLPtr = std::unique_ptr<T, OpenSSLDeleter>;

/// A certificate for one host name, with its key. Without an issuer it is an authority that may issue others.
struct Certificate {
  /// Makes a certificate signed by `issuer`, or by itself. It is valid from and until so many days from now.
  explicit Certificate(const std::string& name, const Certificate* issuer = nullptr, int from = -1,
                       int until = 1);

  /// Writes the certificate, without the key, in PEM format.
  void write(const std::string& path) const;

  OpenSSLPtr<EVP_PKEY> key;
  OpenSSLPtr<X509> x509;
};

/// Sends one reply on each connection to a free loopback port. Uses TLS if there is a certificate.
class TLSServer {
 public:
  TLSServer(const Certificate* certificate, std::string reply);
  ~TLSServer();

  std::uint16_t port() const { return port_; }

 private:
  void serve(int connection) const;

  const std::string reply_;
  OpenSSLPtr<SSL_CTX> context_;
  std::uint16_t port_ = 0;
  int listener_;
  std::atomic<bool> isStopping_ = false;
  std::thread thread_;
};

}  // namespace orvane::test
