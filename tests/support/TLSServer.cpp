#include "tests/support/TLSServer.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

#include "tests/support/LoopbackServer.h"

namespace orvane::test {
namespace {

void extend(X509* certificate, int extension, const std::string& value) {
  X509_EXTENSION* const made = X509V3_EXT_conf_nid(nullptr, nullptr, extension, value.c_str());
  X509_add_ext(certificate, made, -1);
  X509_EXTENSION_free(made);
}

}  // namespace

Certificate::Certificate(const std::string& name, const Certificate* issuer, int from, int until)
    : key(EVP_EC_gen("P-256")), x509(X509_new()) {
  constexpr int day = 24 * 60 * 60;
  X509_set_version(x509.get(), X509_VERSION_3);
  X509_gmtime_adj(X509_getm_notBefore(x509.get()), from * day);
  X509_gmtime_adj(X509_getm_notAfter(x509.get()), until * day);
  X509_set_pubkey(x509.get(), key.get());
  X509_NAME* const subject = X509_get_subject_name(x509.get());
  X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
  X509_set_issuer_name(x509.get(), issuer ? X509_get_subject_name(issuer->x509.get()) : subject);
  extend(x509.get(), NID_subject_alt_name, "DNS:" + name);
  if (!issuer) extend(x509.get(), NID_basic_constraints, "critical,CA:TRUE");
  if (X509_sign(x509.get(), issuer ? issuer->key.get() : key.get(), EVP_sha256()) == 0)
    throw std::runtime_error("no certificate");
}

void Certificate::write(const std::string& path) const {
  std::FILE* const file = std::fopen(path.c_str(), "w");
  PEM_write_X509(file, x509.get());
  std::fclose(file);
}

TLSServer::TLSServer(const Certificate* certificate, std::string reply)
    : reply_(std::move(reply)), listener_(listenOnLoopback(port_)) {
  if (certificate) {
    context_.reset(SSL_CTX_new(TLS_server_method()));
    SSL_CTX_use_certificate(context_.get(), certificate->x509.get());
    SSL_CTX_use_PrivateKey(context_.get(), certificate->key.get());
  }
  thread_ = std::thread([this] {
    sigset_t brokenPipe;  // Raised when a client has gone.
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);
    while (!isStopping_) {
      const int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
      if (connection < 0) continue;
      serve(connection);
      ::close(connection);
    }
  });
}

TLSServer::~TLSServer() {
  isStopping_ = true;
  ::shutdown(listener_, SHUT_RD);
  thread_.join();
  ::close(listener_);
}

void TLSServer::serve(int connection) const {
  std::array<char, 4096> buffer;
  if (!context_) {
    static_cast<void>(!::read(connection, buffer.data(), buffer.size()));
    static_cast<void>(!::write(connection, reply_.data(), reply_.size()));
    return;
  }
  const OpenSSLPtr<SSL> tls(SSL_new(context_.get()));
  SSL_set_fd(tls.get(), connection);
  SSL_set_accept_state(tls.get());
  // The whole request is in one record.
  if (SSL_read(tls.get(), buffer.data(), buffer.size()) <= 0) return;
  SSL_write(tls.get(), reply_.data(), static_cast<int>(reply_.size()));
  SSL_shutdown(tls.get());
}

}  // namespace orvane::test
