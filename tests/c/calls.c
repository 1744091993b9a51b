/* Makes the same call three times from C, and writes one line for each outcome to standard error.
     calls ADDRESS CALL    CALL is picture, code, login, or a mistake, which stops the process */

#include <fcntl.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "orvane/orvane_c.h"

struct posted {
  void (*run)(void* work);
  void* work;
};

static int loop[2];
static pthread_t loopThread;
static int open_ = 0; /* Calls whose context is not released yet. */

static void post(void (*run)(void* work), void* work, void* context) {
  const struct posted posted = {run, work};
  if (write(loop[1], &posted, sizeof posted) != (ssize_t)sizeof posted || context != loop) abort();
}

static char* wordsFor(const orvane_failure* cause, void* context) {
  char words[200];
  if (context != loop || !pthread_equal(pthread_self(), loopThread)) abort();
  if (cause->kind == ORVANE_NOT_READABLE) return NULL;
  snprintf(words, sizeof words, "words for %s %d", cause->domain, (int)cause->code);
  return strdup(words);
}

static void outcome(const orvane_failure* failure, int* context) {
  if (++*context != 1 || !pthread_equal(pthread_self(), loopThread)) abort();
  if (failure)
    fprintf(stderr, ", %d %d %s, %s", failure->kind, (int)failure->code, failure->domain, failure->message);
  fprintf(stderr, "\n");
}

static void pictureFinished(const uint8_t* bytes, size_t size, const orvane_failure* failure, void* context) {
  fprintf(stderr, "%.*s of %d", (int)size, bytes ? (const char*)bytes : "", (int)size);
  outcome(failure, context);
}

static void codeFinished(const orvane_failure* failure, void* context) {
  fprintf(stderr, "code");
  outcome(failure, context);
}

static void loginFinished(const char* message, const orvane_failure* failure, void* context) {
  fprintf(stderr, "%s", message ? message : "null");
  outcome(failure, context);
}

static void release(void* context) {
  if (*(int*)context != 1 || !pthread_equal(pthread_self(), loopThread)) abort();
  free(context);
  --open_;
}

static void makeCall(const char* call) {
  int* const context = calloc(1, sizeof *context);
  ++open_;
  if (strcmp(call, "picture") == 0) orvane_request_picture_code("1", pictureFinished, context, release);
  if (strcmp(call, "code") == 0) orvane_request_code("1", "\xC3\xA4", codeFinished, context, release);
  if (strcmp(call, "login") == 0) orvane_request_login("1", "2", loginFinished, context, release);
  if (strcmp(call, "null") == 0) orvane_request_code("1", NULL, NULL, context, release);
  if (strcmp(call, "not UTF-8") == 0) orvane_request_login("1", "\xC3", NULL, context, release);
}

int main(int count, char** arguments) {
  orvane_setup setup = {0};
  struct posted next;
  int i;
  if (count != 3 || pipe(loop) != 0 || fcntl(loop[0], F_SETFL, O_NONBLOCK) != 0) return 2;
  loopThread = pthread_self();
  setup.address = arguments[1];
  setup.failure_words = wordsFor;
  setup.context = loop;
  if (strcmp(arguments[2], "unprepared") == 0) orvane_set_client_id(NULL);
  if (strcmp(arguments[2], "no post") != 0) setup.post = post;
  orvane_prepare(&setup);
  if (strcmp(arguments[2], "prepared twice") == 0) orvane_prepare(&setup);
  orvane_set_client_id("from C");
  orvane_request_code("1", "no callback", NULL, NULL, NULL);
  for (i = 0; i < 3; ++i) makeCall(arguments[2]);
  /* Twice, because the report about the device follows an accepted login. */
  for (i = 0; i < 2; ++i) {
    if (!orvane_wait_until_idle(60000)) return 3;
    while (read(loop[0], &next, sizeof next) == (ssize_t)sizeof next) next.run(next.work);
  }
  return open_;
}
