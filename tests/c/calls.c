/* Makes calls from C, and writes one line for each outcome.
     calls ADDRESS CALL TIMES    CALL is picture, code, login, or a mistake, which stops the process */

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
static int open_ = 0;     /* Calls whose context is not released yet. */
static int finished_ = 0; /* Calls whose `finished` was called before their release. */

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

static void outcome(const char* what, const orvane_failure* failure, int* context) {
  if (++*context != 1 || !pthread_equal(pthread_self(), loopThread)) abort();
  ++finished_;
  if (failure)
    printf("%s, %d %d %s, %s\n", what, failure->kind, (int)failure->code, failure->domain, failure->message);
  else
    printf("%s\n", what);
}

static void pictureFinished(const uint8_t* bytes, size_t size, const orvane_failure* failure, void* context) {
  char what[64];
  snprintf(what, sizeof what, "%.*s of %d", (int)size, bytes ? (const char*)bytes : "", (int)size);
  outcome(what, failure, context);
}

static void codeFinished(const orvane_failure* failure, void* context) {
  outcome("code", failure, context);
}

static void loginFinished(const char* message, const orvane_failure* failure, void* context) {
  outcome(message ? message : "null", failure, context);
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
  int times;
  if (count != 4 || pipe(loop) != 0) return 2;
  alarm(60);
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
  if (!orvane_wait_until_idle(60000)) return 3;
  for (times = atoi(arguments[3]); times > 0; --times) makeCall(arguments[2]);
  while (open_ > 0 && read(loop[0], &next, sizeof next) == (ssize_t)sizeof next) next.run(next.work);
  if (!orvane_wait_until_idle(60000)) return 3;
  /* The report after a login has posted its reply. */
  fcntl(loop[0], F_SETFL, O_NONBLOCK);
  while (read(loop[0], &next, sizeof next) == (ssize_t)sizeof next) next.run(next.work);
  return finished_ == atoi(arguments[3]) ? 0 : 4;
}
