#include "Tests/EndToEnd/Desktop.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <utility>

namespace gavrel {

using namespace std::chrono_literals;

Desktop::Desktop(const std::vector<std::string>& arguments, std::string program, Rights rights)
    : path_(std::move(program)), rights_(rights) {
  start(arguments);
  expectWindow();
}

Desktop::Desktop(const std::vector<std::string>& arguments, UnderSheet) : path_(GAVREL), rights_(Rights::asTester) {
  start(arguments);
  focusWindow();
}

void Desktop::start(const std::vector<std::string>& arguments) {
  constexpr uid_t nobody = 65534;
  if (rights_ == Rights::homeOnly && ::chown(home.path().c_str(), nobody, nobody) != 0)
    throw std::runtime_error("only root can take rights away from a program");
  program_ = ::fork();
  if (program_ == 0) {
    if (rights_ == Rights::homeOnly && (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0))
      ::_exit(127);
    for (const auto& [name, descriptor] : {std::pair{"output.txt", STDOUT_FILENO}, {"errors.txt", STDERR_FILENO}})
      ::dup2(::open((home / name).c_str(), O_CREAT | O_WRONLY | O_APPEND, 0600), descriptor);
    ::setenv("HOME", home.path().c_str(), 1);
    ::setenv("XDG_RUNTIME_DIR", home.path().c_str(), 1);
    std::vector<char*> argv{const_cast<char*>(path_.c_str())};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    ::execv(path_.c_str(), argv.data());
    ::_exit(127);
  }
}

void Desktop::killAndRestart() {
  ::kill(program_, SIGKILL);
  ::waitpid(program_, nullptr, 0);
  restart();
}

void Desktop::restart() {
  start({});
  focusWindow();
}

Desktop::~Desktop() {
  if (program_ <= 0) return;
  ::kill(program_, SIGKILL);
  ::waitpid(program_, nullptr, 0);
}

void Desktop::expect(const std::string& what, const std::function<bool()>& holds) {
  constexpr auto patience = 30s;
  const auto end = std::chrono::steady_clock::now() + patience;
  while (!holds()) {
    if (std::chrono::steady_clock::now() > end) {
      const int taken = std::system("import -silent -window root end-to-end-failure.png");
      throw std::runtime_error("waited in vain for " + what + (taken == 0 ? "; see end-to-end-failure.png" : ""));
    }
    std::this_thread::sleep_for(50ms);
  }
}

void Desktop::focusWindow() {
  // Windows that come and go meanwhile make xdotool fail.
  expect("the window", [] {
    return std::system("xdotool search --onlyvisible --class gavrel windowfocus --sync >/dev/null 2>&1") == 0;
  });
  settle();
}

void Desktop::expectWindow() {
  focusWindow();
  expect("the command row", [] { return Image::ofScreen().buttonRow(10).size() == 10; });
}

void Desktop::press(Button button) {
  std::vector<Image::Point> buttons;
  expect("the command row", [&] { return (buttons = Image::ofScreen().buttonRow(10)).size() == 10; });
  const auto [x, y] = buttons[button];
  runAndSettle("mousemove " + std::to_string(x) + " " + std::to_string(y) + " click 1");
}

void Desktop::clickNode(std::size_t fromLeft, std::size_t count) {
  std::vector<Image::Point> balls;
  expect(std::to_string(count) + " nodes", [&] { return (balls = Image::ofScreen().balls()).size() == count; });
  const auto [x, y] = balls[fromLeft];
  runAndSettle("mousemove " + std::to_string(x) + " " + std::to_string(y) + " click 1");
}

void Desktop::keys(const std::string& names) {
  runAndSettle("key --delay 40 " + names);
}

void Desktop::type(const std::string& text) {
  runAndSettle("type --delay 20 -- '" + text + "'");
}

void Desktop::expectLine(const std::string& start) {
  expect("the line \"" + start + "\" in\n" + output(), [&] {
    const std::string text = "\n" + output();
    const auto found = text.find("\n" + start, read_);
    if (found == std::string::npos) return false;
    read_ = found + 1;
    return true;
  });
}

void Desktop::expectTitle(const std::string& part) {
  expect("the title " + part,
         [&] { return std::system(("xdotool search --onlyvisible --name '" + part + "' >/dev/null").c_str()) == 0; });
}

int Desktop::exitStatus() {
  std::optional<int> status;
  expect("the program's end", [&] { return (status = ended()).has_value(); });
  return *status;
}

std::optional<int> Desktop::ended() {
  int status = 0;
  if (::waitpid(program_, &status, WNOHANG) != program_) return std::nullopt;
  program_ = -1;
  return status;
}

void Desktop::run(const std::string& xdotoolCommands) {
  if (std::system(("xdotool " + xdotoolCommands).c_str()) != 0)
    throw std::runtime_error("failed: xdotool " + xdotoolCommands);
}

void Desktop::runAndSettle(const std::string& xdotoolCommands) {
  run(xdotoolCommands);
  settle();
}

void Desktop::settle() {
  Image last;
  expect("the picture to settle", [&] {
    std::this_thread::sleep_for(100ms);
    Image now = Image::ofScreen();
    const bool same = now.pixels == last.pixels;
    last = std::move(now);
    return same;
  });
}

}  // namespace gavrel
