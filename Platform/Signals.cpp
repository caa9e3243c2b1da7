#include "Platform/Signals.h"

#include <limits.h>
#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>

namespace gavrel {

namespace {

constexpr std::array endingSignals{SIGHUP, SIGINT, SIGQUIT, SIGABRT, SIGTERM, SIGXCPU};

/// One file to remove. A signal handler may use neither the heap nor locks, so the files stand in a fixed table.
struct Entry {
  enum State { free, beingFilled, filled };
  std::atomic<State> state = free;
  std::array<char, PATH_MAX> path{};
};

std::array<Entry, 8> entries;
std::atomic<int> uninterrupted = 0;  // how many live
std::atomic<bool> isEnding = false;
std::atomic<pid_t> handlingProcess = 0;  // a child has a copy of all this, but neither the threads nor the files

// A handler may only use what is free of locks.
static_assert(std::atomic<Entry::State>::is_always_lock_free && std::atomic<int>::is_always_lock_free &&
              std::atomic<bool>::is_always_lock_free);
static_assert(std::atomic<pid_t>::is_always_lock_free);

void removeFiles() {
  isEnding = true;  // before it reads `uninterrupted`: from now on no Uninterrupted begins
  while (uninterrupted > 0) ::poll(nullptr, 0, 1);
  for (Entry& entry : entries)
    if (entry.state == Entry::filled) ::unlink(entry.path.data());
}

extern "C" void endBySignal(int signal) {
  if (::getpid() == handlingProcess) removeFiles();
  ::signal(signal, SIG_DFL);
  sigset_t only;
  ::sigemptyset(&only);
  ::sigaddset(&only, signal);
  ::pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
  ::raise(signal);
  constexpr int statusOfShells = 128;
  ::_exit(statusOfShells + signal);  // the first process of a container does not end by signals
}

}  // namespace

void keepFilesWholeOnSignals() {
  handlingProcess = ::getpid();
  struct sigaction action {};
  action.sa_handler = endBySignal;
  ::sigfillset(&action.sa_mask);
  for (const int signal : endingSignals) {
    struct sigaction old {};
    // Signals that are ignored, as under nohup, stay ignored.
    if (::sigaction(signal, nullptr, &old) == 0 && old.sa_handler == SIG_DFL) ::sigaction(signal, &action, nullptr);
  }
  ::signal(SIGXFSZ, SIG_IGN);
}

Uninterrupted::Uninterrupted() {
  sigset_t all;
  ::sigfillset(&all);
  ::pthread_sigmask(SIG_BLOCK, &all, &blockedBefore_);  // the handler would wait for its own thread
  ++uninterrupted;
  if (!isEnding) return;
  --uninterrupted;
  while (true) ::pause();  // another thread is ending the process
}

Uninterrupted::~Uninterrupted() {
  --uninterrupted;
  ::pthread_sigmask(SIG_SETMASK, &blockedBefore_, nullptr);
}

RemovedOnSignal::RemovedOnSignal(const std::filesystem::path& file) {
  const std::string& name = file.native();
  for (std::size_t i = 0; i < entries.size() && place_ < 0 && name.size() < PATH_MAX; ++i) {
    auto expected = Entry::free;
    if (!entries[i].state.compare_exchange_strong(expected, Entry::beingFilled)) continue;
    std::memcpy(entries[i].path.data(), name.c_str(), name.size() + 1);
    entries[i].state = Entry::filled;
    place_ = static_cast<int>(i);
  }
}

RemovedOnSignal::~RemovedOnSignal() {
  if (place_ >= 0) entries[static_cast<std::size_t>(place_)].state = Entry::free;
}

}  // namespace gavrel
