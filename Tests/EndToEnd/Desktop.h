#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Tests/EndToEnd/Image.h"
#include "Tests/TemporaryFolder.h"

namespace gavrel {

/// The real program on a display of its own, seen and worked as a person does: by pictures, mouse and keys. What does
/// not come about within half a minute throws.
class Desktop {
 public:
  /// Whether the program may write as its tester may, or in its home folder only; for the latter one has to be root.
  enum class Rights { asTester, homeOnly };

  /// Starts the program with these arguments and a home folder of its own, and waits for its window.
  explicit Desktop(const std::vector<std::string>& arguments = {}, std::string program = GAVREL,
                   Rights rights = Rights::asTester);
  /// The same, with a sheet over the window from the beginning.
  [[nodiscard]] static Desktop underSheet(const std::vector<std::string>& arguments) {
    return Desktop(arguments, UnderSheet());
  }
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;
  ~Desktop();

  enum Button { addNode, selectForTruss, selectForBeam, addTruss, addBeam, calculate, showStrain, save, saveAs, open };

  void press(Button button);
  /// Clicks the node that stands at this place among all nodes counted from the left, of which `count` are seen.
  void clickNode(std::size_t fromLeft, std::size_t count);
  static void keys(const std::string& names);
  /// xdotool's commands, separated by white space, without waiting for what they bring about.
  static void run(const std::string& xdotoolCommands);
  void type(const std::string& text);

  /// Waits for a line on the program's standard output, counted from the last line waited for, that starts like this.
  void expectLine(const std::string& start);
  [[nodiscard]] std::string output() const { return home.get("output.txt"); }
  /// What the program has written to its standard error.
  [[nodiscard]] std::string errors() const { return home.get("errors.txt"); }

  /// Waits for a window whose title this is a part of.
  void expectTitle(const std::string& part);

  /// Kills the program and starts it again, with the same home folder and no arguments; a sheet may be over its window.
  void killAndRestart();

  /// The exit status once the program has ended by itself.
  int exitStatus();
  /// What waitpid tells of the program if it has ended.
  std::optional<int> ended();
  /// Starts the program that has ended again, with the same home folder and no arguments.
  void restart();

  /// Waits for the window of the program, or of one that has followed it, and gives it the focus.
  static void focusWindow();
  /// The same, and waits for it to be ready for commands, with no sheet over it.
  static void expectWindow();

  /// Waits until two pictures of the screen in a row are the same.
  static void settle();

  /// Waits until `holds`.
  static void expect(const std::string& what, const std::function<bool()>& holds);

  TemporaryFolder home;

 private:
  struct UnderSheet {};
  Desktop(const std::vector<std::string>& arguments, UnderSheet);

  void start(const std::vector<std::string>& arguments);
  static void runAndSettle(const std::string& xdotoolCommands);

  const std::string path_;
  const Rights rights_;
  pid_t program_ = -1;
  std::size_t read_ = 0;  // bytes of the output that expectLine has passed
};

}  // namespace gavrel
