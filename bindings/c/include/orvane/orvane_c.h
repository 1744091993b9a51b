#ifndef ORVANE_ORVANE_C_H
#define ORVANE_ORVANE_C_H

/**
 * Sign-in by mobile phone number, for C and for languages that call C.
 *
 * A program prepares the library once, and then makes three calls: orvane_request_picture_code() fetches a
 * picture to read, orvane_request_code() has a code sent by SMS, orvane_request_login() logs in with it.
 *
 * Each call sends one request and returns. Later it calls `finished` exactly once, and then `release` exactly
 * once, both with `context`, on the thread of the program's event loop, to which orvane_setup::post posts.
 * `finished` may be null if the outcome does not matter, and `release` if there is nothing to release. Both
 * may make calls, and must not throw or jump out. A pointer that they receive is valid until they return.
 *
 * Strings are UTF-8, end with a zero byte, and are copied before a function returns. All functions may be
 * called from any thread. Nothing that the network does stops the process. A mistake in the program does,
 * with one line on standard error: a null string, a string that is not UTF-8, a call before orvane_prepare(),
 * or a second orvane_prepare(). So does a lack of memory. A string of the service that contains a zero byte
 * is cut there.
 */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define ORVANE_NOEXCEPT noexcept
extern "C" {
#else
#define ORVANE_NOEXCEPT
#endif

/* The library hides all other names. */
#pragma GCC visibility push(default)

/** The kinds of failure that a program may treat differently. docs/errors.md says what to do after each. */
typedef enum orvane_kind {
  ORVANE_REFUSED,       /**< The service refused the call. */
  ORVANE_NOT_SENT,      /**< The request could not be built, or a URL on its way cannot be used. */
  ORVANE_NO_CONNECTION, /**< The connection failed or was lost. The service may have received the request. */
  ORVANE_TIMED_OUT,     /**< No reply came in time. The service may have received the request. */
  ORVANE_NOT_SECURE,    /**< No secure connection could be made. */
  ORVANE_NOT_READABLE,  /**< A reply came that could not be read. */
  ORVANE_OTHER          /**< Anything else. */
} orvane_kind;

/** Why a call failed. */
typedef struct orvane_failure {
  orvane_kind kind;    /**< What a program may treat differently. */
  int64_t code;        /**< The service's code, 1 for each refused login; or the code of another error. */
  const char* domain;  /**< The service's message; or the domain of another error, as in docs/errors.md. */
  const char* message; /**< One sentence for a person, or the program's words. */
} orvane_failure;

/** What orvane_prepare() needs to know. Set the members that are not used to zero. */
typedef struct orvane_setup {
  /** The service's address: "http://" or "https://", a host, and optionally a port and a path. Any other
      string stops the process. Null: the address that is compiled into the library. */
  const char* address;

  /** Posts to the program's event loop and returns: the loop later calls `run(work)`, once, and keeps the
      order. Called on any thread, with `context`, until the process ends. Must not be null. */
  void (*post)(void (*run)(void* work), void* work, void* context);

  /** Returns what to tell a person if a call cannot report its reply: after a login without one, or after a
      reply without a member that the call reads. Makes the string with malloc(), and the library frees it.
      Called on the event loop's thread, with `context`. If this is null or returns null, the library uses an
      English sentence. */
  char* (*failure_words)(const orvane_failure* cause, void* context);

  /** Handed to the two functions above. */
  void* context;
} orvane_setup;

/** Prepares the library, once, before anything else is called. Copies `setup`. */
void orvane_prepare(const orvane_setup* setup) ORVANE_NOEXCEPT;

/** Sets the client identifier that later calls send. Null clears it. Not to be called while another thread
    makes a call. */
void orvane_set_client_id(const char* client_id) ORVANE_NOEXCEPT;

/** Receives the bytes of the picture, or a failure. `failure` is null if and only if there is a picture,
    which may be empty. */
typedef void (*orvane_picture_finished)(const uint8_t* bytes, size_t size, const orvane_failure* failure,
                                        void* context);

/** Receives null if the code was sent. */
typedef void (*orvane_code_finished)(const orvane_failure* failure, void* context);

/** Receives the service's message, and a failure unless the login was accepted. After a failure that is no
    refusal the message is that of the failure, or null if no request was sent. */
typedef void (*orvane_login_finished)(const char* message, const orvane_failure* failure, void* context);

/** Fetches the picture verification code for a mobile number. Also writes the error of a failed transfer, or
    of a reply that is not JSON, to standard output: one line with its domain and code. */
void orvane_request_picture_code(const char* mobile, orvane_picture_finished finished, void* context,
                                 void (*release)(void* context)) ORVANE_NOEXCEPT;

/** Asks the service to send a code by SMS. `picture_text` is what the user read from the picture. */
void orvane_request_code(const char* mobile, const char* picture_text, orvane_code_finished finished,
                         void* context, void (*release)(void* context)) ORVANE_NOEXCEPT;

/** Logs in with the code that came by SMS. After an accepted login the library reports the system's version,
    the carrier's name and the device's model to the service, and ignores the outcome. */
void orvane_request_login(const char* mobile, const char* code, orvane_login_finished finished, void* context,
                          void (*release)(void* context)) ORVANE_NOEXCEPT;

/** Waits until no request is under way, or until `milliseconds` have passed, a day at most. Returns 1 if
    none is. A program that ends after a login calls it, so that the report about the device is sent. It
    does not wait for `finished`, which needs the event loop. */
int orvane_wait_until_idle(int64_t milliseconds) ORVANE_NOEXCEPT;

#undef ORVANE_NOEXCEPT
#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
