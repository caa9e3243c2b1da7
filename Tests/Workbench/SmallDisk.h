#pragma once

#include <sched.h>
#include <sys/mount.h>

#include <filesystem>
#include <string>
#include <utility>

namespace gavrel {

/// A disk of its own in memory, in the place of a folder and seen by this process alone. It takes the superuser's
/// rights; without them it is not `mounted`.
class SmallDisk {
 public:
  SmallDisk(std::filesystem::path folder, int kibibytes) : folder_(std::move(folder)) {
    mounted_ = ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
               ::mount("none", folder_.c_str(), "tmpfs", 0, formatSize(kibibytes).c_str()) == 0;
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;
  ~SmallDisk() {
    if (mounted_) ::umount2(folder_.c_str(), MNT_DETACH);
  }

  [[nodiscard]] bool mounted() const { return mounted_; }
  [[nodiscard]] bool setSize(int kibibytes) const { return remount(0, formatSize(kibibytes)); }
  [[nodiscard]] bool setReadOnly(bool value) const { return remount(value ? MS_RDONLY : 0, ""); }

 private:
  static std::string formatSize(int kibibytes) { return "size=" + std::to_string(kibibytes) + "k"; }
  [[nodiscard]] bool remount(unsigned long flags, const std::string& options) const {
    return ::mount("none", folder_.c_str(), nullptr, MS_REMOUNT | flags, options.c_str()) == 0;
  }

  std::filesystem::path folder_;
  bool mounted_ = false;
};

}  // namespace gavrel
