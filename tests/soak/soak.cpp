// Very many calls over loopback, with a share of each fault.
//
// soak CALLS: makes them, checks that each ends as its number says it must, and that in the end memory and descriptors
// are where they were after the first ten thousand. Prints the figures; fails where one is not as it should be.

#include <array>
#include <atomic>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <malloc.h>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "orvane/host/HostSession.h"
#include "orvane/host/MainQueue.h"
#include "orvane/orvane.h"
#include "tests/support/LoopbackServer.h"

namespace orvane {
namespace {

using test::LoopbackServer;
using test::reply;
using Then = LoopbackServer::Then;
using Answer = LoopbackServer::Answer;
using Request = LoopbackServer::Request;

/// What a call is made for. The call of number N does what `kinds` has for N; the service learns it from the number that
/// is asked about.
struct Kind {
  const char* name;
  const char* outcome;
  int perTenThousand;
};

constexpr Kind kinds[] = {
    {"picture", "done", 1500},
    {"code", "done", 0},  // The rest.
    {"login and submission", "done", 800},
    {"refused", "Busy (7)", 500},
    {"login refused", "Busy (1)", 200},
    {"reset instead of a reply", "NSURLErrorDomain (-1005)", 100},
    {"reset within the reply", "NSURLErrorDomain (-1005)", 100},
    {"closed within the reply", "NSURLErrorDomain (-1005)", 50},
    {"no HTTP", "NSURLErrorDomain (-1017)", 50},
    {"compression that is none", "NSURLErrorDomain (-1015)", 100},
    {"no JSON", "com.brovent.error (-1)", 200},
    {"reply in two pieces", "done", 300},
    {"redirected", "done", 200},
    {"redirected for ever", "NSURLErrorDomain (-1007)", 20},
    {"too large", "NSURLErrorDomain (-1103)", 20},
    {"no request", "com.brovent.error (-1)", 100},
    {"no connection", "NSURLErrorDomain (-1004)", 20},
    {"no such scheme", "NSURLErrorDomain (-1002)", 50},
    {"idle for too long", "NSURLErrorDomain (-1001)", 10},
    {"session gone at once", "done", 20},
    {"cancelled at once", "done or dropped", 20},
};
