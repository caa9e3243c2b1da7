#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <deque>
#include <random>
#include <string>

#include "Tests/EndToEnd/Desktop.h"

using namespace gavrel;

namespace {

long setting(const char* name, long usual) {
  const char* const text = std::getenv(name);
  return text != nullptr ? std::atol(text) : usual;
}

/// Random clicks, drags, keys and texts, as commands of xdotool.
class Monkey {
 public:
  explicit Monkey(long seed) : random_(static_cast<std::mt19937::result_type>(seed)) {}

  /// So many events, a few hundredths of a second apart.
  std::string events(int count) {
    std::string commands;
    for (int i = 0; i < count; ++i) commands += event() + " sleep 0.03 ";
    return commands;
  }

 private:
  int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(random_); }

  template <std::size_t count>
  std::string pickOne(const std::array<const char*, count>& choices) {
    return choices[static_cast<std::size_t>(below(count))];
  }

  std::string place(int left, int top, int width, int height) {
    return "mousemove " + std::to_string(left + below(width)) + " " + std::to_string(top + below(height));
  }

  std::string event() {
    static constexpr std::array keys{
        "Return", "Return", "Return", "Escape", "Escape", "Tab",    "Tab",          "space",        "Up",     "Down",
        "Left",   "Right",  "ctrl+n", "ctrl+o", "ctrl+s", "ctrl+i", "ctrl+r",       "ctrl+r",       "ctrl+t", "ctrl+0",
        "ctrl+1", "ctrl+4", "ctrl+u", "f",      "plus",   "minus",  "ctrl+shift+t", "ctrl+shift+n", "alt+f",  "alt+s",
        "alt+v",  "alt+g",  "Delete", "ctrl+a", "Home",   "Next",   "ctrl+shift+s", "shift+Tab",    "F10",    "ctrl+q"};
    static constexpr std::array texts{"1", "minus 2 period 5", "1 e 3", "n a n", "0", "x", "1 e 4 0 0", "period", "7"};
    const int kind = below(20);
    if (kind < 4) return "key " + pickOne(keys);
    if (kind < 5) return "key ctrl+a " + pickOne(texts);
    if (kind < 6) return place(8, 70, 1180, 600) + " mousedown 1 " + place(8, 70, 1180, 600) + " mouseup 1";
    if (kind < 7) return place(8, 70, 1180, 600) + " click " + pickOne<4>({"3", "4", "5", "2"});
    if (kind < 11) return place(100, 740, 1000, 30) + " click 1";                                    // the command row
    if (kind < 14) return place(400, 250, 420, 330) + " click 1";                                    // a sheet
    if (kind < 15) return place(0, 0, 260, 26) + " click 1 " + place(0, 30, 300, 350) + " click 1";  // a menu
    if (kind < 16) return place(0, 480, 1200, 250) + " click 1";                                     // the dock
    return place(0, 0, 1200, 800) + " click 1";
  }

  std::mt19937 random_;
};

/// Whether the program was ended by what its user was warned of and has confirmed.
bool endedAsAnnounced(int status, const std::string& errors) {
  const auto answer = errors.rfind("gavrel.questions: ");
  const auto fatal = errors.rfind("Fatal error: ");
  return WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT && answer != std::string::npos &&
         fatal != std::string::npos && answer < fatal && errors.find("Anyway", answer) < fatal;
}

/// GAVREL_MONKEY_SECONDS and GAVREL_MONKEY_SEED make it longer, or another one.
TEST(Monkey, EndsTheProgramByNothingButWhatItWasWarnedOf) {
  if (::geteuid() != 0) GTEST_SKIP() << "Only root can keep the monkey from writing all over the disk.";
  using Clock = std::chrono::steady_clock;
  constexpr int eventsAtOnce = 20;
  constexpr std::size_t remembered = 3;
  ::setenv("QT_LOGGING_RULES", "gavrel.questions.debug=true", 1);
  const long seed = setting("GAVREL_MONKEY_SEED", 1);
  Monkey monkey(seed);
  Desktop desktop({GAVREL_EXAMPLES "/dome.json"}, GAVREL, Desktop::Rights::homeOnly);
  std::deque<std::string> last;
  long events = 0;
  long ends = 0;
  const auto until = Clock::now() + std::chrono::seconds(setting("GAVREL_MONKEY_SECONDS", 20));
  while (Clock::now() < until) {
    last.push_back(monkey.events(eventsAtOnce));
    if (last.size() > remembered) last.pop_front();
    Desktop::run(last.back());
    events += eventsAtOnce;
    const auto status = desktop.ended();
    if (!status) continue;
    if (*status != 0 && !endedAsAnnounced(*status, desktop.errors())) {
      std::string history;
      for (const std::string& commands : last) history += "xdotool " + commands + "\n";
      FAIL() << "seed " << seed << ", after " << events << " events, status " << *status << "\n"
             << history << desktop.output() << desktop.errors();
    }
    ++ends;
    desktop.restart();
  }
  RecordProperty("events", std::to_string(events));
  std::printf("%ld events, ended %ld times\n", events, ends);

  Desktop::keys("Escape Escape Escape Escape Escape Escape");
  if (const auto status = desktop.ended(); status && *status == 0) desktop.restart();
  Desktop::keys("Escape Escape");
  Desktop::keys("ctrl+shift+n");
  Desktop::keys("Return");
  Desktop::expect("a node", [&] { return desktop.output().rfind("Added Node: id ") != std::string::npos; });
}

}  // namespace
