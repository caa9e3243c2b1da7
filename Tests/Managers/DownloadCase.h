#pragma once

#include <unistd.h>

#include "Tests/Managers/ManagerCase.h"

namespace gavrel {

/// Downloads from the test's server, and what is stored of them.
class DownloadCase : public ManagerCase {
 protected:
  [[nodiscard]] VersionInfo offer(const QString& address) const { return {"2.0", 1, address, "", false, {}}; }

  void download(const QString& path = "/a.zip") { manager->downloadUpdate(offer(server.address() + path)); }

  [[nodiscard]] std::string folder() const { return "gavrel-" + std::to_string(::geteuid()); }
  [[nodiscard]] std::string stored() const { return files.get(folder() + "/brantelUpdate/brantel-Update.zip"); }
};

}  // namespace gavrel
