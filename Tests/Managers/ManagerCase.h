#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QStringList>
#include <memory>

#include "Managers/UpdateManager.h"
#include "Tests/Managers/UpdateServer.h"
#include "Tests/TemporaryFolder.h"

namespace gavrel {

/// Lets events happen until `holds` does, for up to twenty seconds.
inline bool happens(const std::function<bool()>& holds) {
  for (const QDeadlineTimer end(20000); !holds();) {
    if (end.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return true;
}

/// A manager of version 1.2 (build 7) against a server of the test's own, with a temporary folder of its own.
class ManagerCase : public testing::Test {
 protected:
  ManagerCase() {
    ::setenv("TMPDIR", files.path().c_str(), 1);
    ::setenv("SSL_CERT_FILE", server.authority().toUtf8(), 1);
    setup.versionCheckUrl = server.address() + "/versions.json";
    setup.settings = QString::fromStdString((files / "gavrel.ini").string());
    setup.bundle.dictionary = {{"CFBundleShortVersionString", "1.2"}, {"CFBundleVersion", "7"}};
    setup.silence = std::chrono::seconds(10);
    setup.terminate = [this] { terminated = true; };
  }

  ~ManagerCase() override { ::unsetenv("TMPDIR"); }

  void start() {
    manager = std::make_unique<UpdateManager>(setup);
    QObject::connect(manager.get(), &UpdateManager::stateChanged, [this] { history += manager->state->name(); });
  }

  /// Whether the state becomes this one.
  bool becomes(const QString& state) {
    return happens([&] { return manager->state->name() == state; });
  }

  [[nodiscard]] std::string description() const { return manager->state->errorDescription().toStdString(); }

  TemporaryFolder files;
  UpdateServer server;
  UpdateManager::Setup setup;
  std::unique_ptr<UpdateManager> manager;
  QStringList history;  // names of the states
  bool terminated = false;
};

}  // namespace gavrel
