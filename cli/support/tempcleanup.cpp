#include "support/tempcleanup.h"

#include <limits.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cstring>

namespace seqlattice_cli {

namespace {

// A slot's path is complete before its flag is set, and the flag is cleared
// before the path is reused, so the handler never reads a half-written path.
char gPaths[kTempSlots][PATH_MAX];
volatile sig_atomic_t gUsed[kTempSlots];

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

extern "C" void removeTempFiles(int signal) {
  for (int k = 0; k < kTempSlots; ++k) {
    if (gUsed[k]) unlink(gPaths[k]);
  }
  struct sigaction original;
  std::memset(&original, 0, sizeof original);
  original.sa_handler = SIG_DFL;
  sigaction(signal, &original, nullptr);
  raise(signal);
}

void installHandlers() {
  static bool installed = false;
  if (installed) return;
  installed = true;
  for (int signal : kSignals) {
    struct sigaction current;
    if (sigaction(signal, nullptr, &current) != 0 ||
        current.sa_handler == SIG_IGN) {
      continue;
    }
    struct sigaction action;
    std::memset(&action, 0, sizeof action);
    action.sa_handler = removeTempFiles;
    sigemptyset(&action.sa_mask);
    for (int other : kSignals) sigaddset(&action.sa_mask, other);
    sigaction(signal, &action, nullptr);
  }
}

}  // namespace

int registerTempFile(const std::string& path) {
  installHandlers();
  if (path.size() >= PATH_MAX) return -1;
  for (int k = 0; k < kTempSlots; ++k) {
    if (gUsed[k]) continue;
    std::memcpy(gPaths[k], path.c_str(), path.size() + 1);
    std::atomic_signal_fence(std::memory_order_seq_cst);
    gUsed[k] = 1;
    return k;
  }
  return -1;
}

void unregisterTempFile(int slot) {
  if (slot < 0 || slot >= kTempSlots) return;
  gUsed[slot] = 0;
  std::atomic_signal_fence(std::memory_order_seq_cst);
}

}  // namespace seqlattice_cli
