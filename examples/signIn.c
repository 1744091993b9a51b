/* Signs in from C, with a pipe as the event loop. */
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "orvane/orvane_c.h"

struct posted {
  void (*run)(void* work);
  void* work;
};

static int loop[2];
static int status = 1;
static int isRunning = 1;
static char mobile[64];

/* Called on any thread. A pipe takes a piece of this size as a whole, and keeps the order. */
static void post(void (*run)(void* work), void* work, void* context) {
  const struct posted posted = {run, work};
  (void)context;
  if (write(loop[1], &posted, sizeof posted) != (ssize_t)sizeof posted) perror("The event loop is lost");
}

static void ask(const char* question, char* answer, int size) {
  printf("%s", question);
  fflush(stdout);
  if (!fgets(answer, size, stdin)) answer[0] = '\0';
  answer[strcspn(answer, "\n")] = '\0';
}

static int hasFailed(const orvane_failure* failure) {
  if (!failure) return 0;
  fprintf(stderr, "Sign-in failed: %s\n", failure->message);
  isRunning = 0;
  return 1;
}

static void loggedIn(const char* message, const orvane_failure* failure, void* context) {
  (void)context;
  if (hasFailed(failure)) return;
  puts(message);
  status = 0;
  isRunning = 0;
}

static void codeSent(const orvane_failure* failure, void* context) {
  char code[64];
  (void)context;
  if (hasFailed(failure)) return;
  ask("The code in the text message: ", code, sizeof code);
  orvane_request_login(mobile, code, loggedIn, NULL, NULL);
}

static void pictureCame(const uint8_t* bytes, size_t size, const orvane_failure* failure, void* context) {
  char text[64];
  FILE* file;
  (void)context;
  if (hasFailed(failure)) return;
  file = fopen("picture.png", "wb");
  if (file) {
    fwrite(bytes, 1, size, file);
    fclose(file);
  }
  ask("What does picture.png say? ", text, sizeof text);
  orvane_request_code(mobile, text, codeSent, NULL, NULL);
}

int main(int argc, char** argv) {
  orvane_setup setup = {0};
  struct posted next;
  if (pipe(loop) != 0) return 1;
  setup.address = argc > 1 ? argv[1] : NULL;
  setup.post = post;
  orvane_prepare(&setup);
  ask("Mobile number: ", mobile, sizeof mobile);
  orvane_request_picture_code(mobile, pictureCame, NULL, NULL);
  while (isRunning && read(loop[0], &next, sizeof next) == (ssize_t)sizeof next) next.run(next.work);
  orvane_wait_until_idle(10000); /* Until the report about the device is sent. */
  return status;
}
