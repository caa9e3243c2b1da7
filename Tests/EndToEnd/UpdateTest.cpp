#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QThread>
#include <cstdlib>
#include <fstream>
#include <optional>

#include "Managers/VersionInfo.h"
#include "Tests/EndToEnd/Desktop.h"
#include "Tests/Managers/UpdateServer.h"

using namespace gavrel;

namespace {

namespace fs = std::filesystem;

/// The update server in a thread of its own, so that it answers while a test waits.
class ServerThread : public QThread {
 public:
  ServerThread() {
    server.moveToThread(this);
    start();
  }
  ~ServerThread() override {
    onServer([] { QThread::currentThread()->quit(); });
    wait();
  }

  template <class Function>
  void onServer(Function function) {
    QMetaObject::invokeMethod(&server, function, Qt::BlockingQueuedConnection);
  }

  [[nodiscard]] qsizetype requests(const QByteArray& path) {
    qsizetype count = 0;
    onServer([&] { count = server.requests.count(path); });
    return count;
  }

  UpdateServer server{GAVREL_UPDATE_HOST};
};

std::string readText(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// Processes that run this program, by number.
std::vector<std::string> findProcesses(const fs::path& program) {
  std::vector<std::string> found;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    std::error_code notOurs;
    if (fs::read_symlink(entry.path() / "exe", notOurs) == program) found.push_back(entry.path().filename());
  }
  return found;
}

/// Version 1 of the bundle in a folder with a difficult name, and version 2 on the server.
class Update : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(bundle.parent_path());
    fs::create_directory(files / "update");
    for (const auto& [folder, version] : {std::pair{bundle.parent_path(), "1.0.0"}, {files / "update", "2.0.0"}}) {
      const QString path = QString::fromStdString(folder.string());
      runTool("unzip", {"-q", GAVREL_BUNDLE, "-d", path});
      runTool("sed",
              {"-i", QString("/ShortVersion/{n;s/>[^<]*</>%1</}").arg(version), path + "/Gavrel.app/Info.plist"});
    }
    const QString update = QString::fromStdString((files / "update").string());
    runTool("zip", {"-qr", "../update.zip", "Gavrel.app"}, update);

    const std::string server = "http://127.0.0.1:" + std::to_string(thread.server.serverPort());
    for (const char* name : {"https_proxy", "HTTPS_PROXY"}) ::setenv(name, server.c_str(), 1);
    for (const char* name : {"no_proxy", "NO_PROXY"}) ::unsetenv(name);
    ::setenv("SSL_CERT_FILE", thread.server.authority().toUtf8(), 1);
    ::setenv("TMPDIR", files.path().c_str(), 1);
  }

  void TearDown() override {
    ::unsetenv("TMPDIR");
    for (const std::string& process : findProcesses(program)) ::kill(std::stoi(process), SIGKILL);
  }

  enum class Changes { none, kept, notKept };

  /// Version 1 started, edited if asked to, and led to where it would end to be replaced.
  void installTheUpdate(Changes changes = Changes::none) {
    desktop.emplace(std::vector<std::string>{}, program);
    if (changes == Changes::notKept) {
      fs::create_directories(desktop->home / ".local/share/gavrel");
      desktop->home.put(".local/share/gavrel/recovery", "where the folder should be");
    }
    Desktop::expect("the silent check", [&] { return thread.requests("/versions.json") == 1; });
    if (changes != Changes::none) {
      desktop->press(Desktop::addNode);
      Desktop::keys("Return");
      desktop->expectLine("Added Node");
    }
    const VersionInfo offer{"2.0.0", 1, GAVREL_UPDATE_SERVER "/update.zip", "", false, {}};
    thread.onServer([&] {
      thread.server.answers["/versions.json"] = {"{\"brantel\":" + encode(offer) + "}"};
      thread.server.answers["/update.zip"] = {QByteArray::fromStdString(files.get("update.zip"))};
    });
    Desktop::keys("ctrl+u");
    Desktop::expect("the explicit check", [&] { return thread.requests("/versions.json") == 2; });
    Desktop::settle();
    Desktop::keys("Tab Tab space");  // past "Later" to "Download & Install"
    Desktop::expect("the download", [&] { return fs::exists(work / "brantel-Update.zip"); });
    Desktop::settle();
    Desktop::keys("Escape");  // puts the sheet away
    Desktop::expectWindow();
    Desktop::keys("ctrl+u");
    Desktop::expect("another check", [&] { return thread.requests("/versions.json") == 3; });
    Desktop::settle();
    Desktop::keys("Tab Tab space");
    Desktop::expect("another download", [&] { return thread.requests("/update.zip") == 2; });
    Desktop::settle();
    Desktop::run("key --delay 40 Tab Tab space");  // past "Cancel" to "Install & Restart"
    if (changes == Changes::notKept) return;
    EXPECT_EQ(desktop->exitStatus(), 0);
  }

  /// The arguments of the process that has followed.
  std::string follower() {
    std::string line;  // empty for a moment after the process has begun
    Desktop::expect("the restart", [&] {
      const auto processes = findProcesses(program);
      return processes.size() == 1 && !(line = readText("/proc/" + processes.front() + "/cmdline")).empty();
    });
    return line.substr(program.string().size() + 1);
  }

  std::string version() {
    runTool("sh", {"-c", "\"$0\" --version > version.txt", QString::fromStdString(program.string())},
            QString::fromStdString(files.path().string()));
    return files.get("version.txt");
  }

  TemporaryFolder files;
  std::optional<Desktop> desktop;
  const fs::path work = files / ("gavrel-" + std::to_string(::geteuid())) / "brantelUpdate";
  const fs::path bundle = files / "it's \"home\"/Gavrel.app";
  const fs::path program = bundle / "bin/gavrel";
  ServerThread thread;
};

TEST_F(Update, ReplacesTheBundleAndRestarts) {
  installTheUpdate(Changes::kept);
  EXPECT_EQ(follower(), "");
  EXPECT_EQ(version(), "gavrel 2.0.0\n");
  EXPECT_FALSE(fs::exists(bundle.string() + ".old"));
  // It has found no newer version than itself, and offers what was not saved.
  Desktop::expect("its silent check", [&] { return thread.requests("/versions.json") == 4; });
  Desktop::focusWindow();
  Desktop::keys("Return");  // Restore
  desktop->expectTitle("^\\*New Project");
  Desktop::expectWindow();
}

TEST_F(Update, AnInterruptedOneIsPutRightAtTheStart) {
  fs::rename(bundle, bundle.string() + ".old");
  fs::create_directory(bundle.string() + ".new");
  std::ofstream(bundle.string() + ".update").put('\n');
  desktop.emplace(std::vector<std::string>{}, bundle.string() + ".old/bin/gavrel");
  EXPECT_EQ(version(), "gavrel 1.0.0\n");
  for (const char* ending : {".old", ".new", ".update"}) EXPECT_FALSE(fs::exists(bundle.string() + ending));
}

TEST_F(Update, IsNotLookedForAtStartsOnceThatIsSwitchedOff) {
  desktop.emplace(std::vector<std::string>{}, program);
  Desktop::expect("the silent check", [&] { return thread.requests("/versions.json") == 1; });
  Desktop::keys("alt+g");
  Desktop::keys("Down Down Down Return");
  desktop->killAndRestart();
  Desktop::keys("ctrl+u");
  Desktop::expect("the explicit check", [&] { return thread.requests("/versions.json") >= 2; });
  Desktop::settle();
  EXPECT_EQ(thread.requests("/versions.json"), 2);
}

TEST_F(Update, IsRefusedWhileChangesCannotBeKept) {
  installTheUpdate(Changes::notKept);
  Desktop::settle();
  EXPECT_EQ(desktop->ended(), std::nullopt);
  EXPECT_EQ(version(), "gavrel 1.0.0\n");
  Desktop::keys("Escape");  // puts the reason away
  Desktop::expectWindow();
  desktop->expectTitle("^\\*New Project");
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
