/// Read by the leak sanitizer when the process ends. OpenSSL then forgets what it holds for threads that still run.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libcrypto.so";
}
