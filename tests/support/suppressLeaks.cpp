/// Called by the leak sanitizer at exit, when OpenSSL forgets the memory of threads that still run.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libcrypto.so";
}
