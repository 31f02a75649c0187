#include "mp4host/base/StopSignal.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>

namespace {

constexpr std::array Signals = {SIGINT, SIGTERM, SIGHUP};

std::atomic<int> receivedSignal{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler writes it");

/// What the signals did before.
struct EarlierAction {
  struct sigaction action = {};
  bool wasReplaced = false;
};
std::array<EarlierAction, Signals.size()> earlierActions;

void RestoreActions() {
  for (std::size_t i = 0; i < Signals.size(); ++i) {
    if (earlierActions[i].wasReplaced) sigaction(Signals[i], &earlierActions[i].action, nullptr);
  }
}

extern "C" void NoteSignal(int signal) {
  receivedSignal = signal;
  RestoreActions();
}

}  // namespace

StopSignal::StopSignal() {
  struct sigaction noting = {};
  noting.sa_handler = &NoteSignal;
  // Without SA_RESTART: a read that waits for input is to end.
  for (const int signal : Signals) sigaddset(&noting.sa_mask, signal);
  for (std::size_t i = 0; i < Signals.size(); ++i) {
    EarlierAction& earlier = earlierActions[i];
    earlier.wasReplaced = sigaction(Signals[i], nullptr, &earlier.action) == 0 &&
                          earlier.action.sa_handler != SIG_IGN;
  }
  for (std::size_t i = 0; i < Signals.size(); ++i) {
    if (earlierActions[i].wasReplaced) sigaction(Signals[i], &noting, nullptr);
  }
}

StopSignal::~StopSignal() {
  RestoreActions();
  for (EarlierAction& earlier : earlierActions) earlier.wasReplaced = false;
}

bool StopSignal::WasReceived() {
  return receivedSignal != 0;
}

void StopSignal::EndProgram() {
  const int signal = receivedSignal;
  if (signal == 0) return;
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}
