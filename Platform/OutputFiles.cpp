#include "Platform/OutputFiles.h"

#include <sys/stat.h>

#include <span>
#include <string>

#include "Platform/AtomicFile.h"
#include "Platform/Destination.h"
#include "Platform/ShownText.h"

namespace gavrel {

namespace {

using std::filesystem::path;

/// Which file a path leads to: the file itself or, where there is none yet, its folder and its name.
struct Identity {
  dev_t device = 0;
  ino_t number = 0;
  std::string name;

  [[nodiscard]] static std::optional<Identity> of(const path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) == 0) return Identity{status.st_dev, status.st_ino, {}};
    const path followed = followLinks(file);
    if (::stat(parentFolder(followed).c_str(), &status) != 0) return std::nullopt;
    return Identity{status.st_dev, status.st_ino, followed.filename()};
  }

  bool operator==(const Identity&) const = default;
};

bool isSame(const path& one, const path& other) {
  const auto identity = Identity::of(one);
  return identity && identity == Identity::of(other);
}

/// The file's name and, if it differs, the other name of the same file.
std::string showNames(const path& file, const path& other) {
  return shownPath(file) + (file == other ? "" : " (" + shownPath(other) + ")");
}

bool isFile(const path& file) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(file, ignored);
}

}  // namespace

std::optional<Failure> whyNotWritable(const std::vector<path>& outputs, const std::vector<path>& inputs) {
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    const path& output = outputs[i];
    if (output.empty()) continue;
    for (const path& input : inputs)
      if (isFile(input) && isSame(input, output))
        return Failure{"cannot write " + showNames(output, input) + ", which is read: choose another file"};
    for (const path& other : std::span(outputs).first(i))
      if (!other.empty() && !(isStream(other) && isStream(output)) && isSame(output, other))
        return Failure{"cannot write " + showNames(output, other) + " twice: choose another file"};
    if (auto refused = whyNotReplaceable(output)) return refused;
  }
  return std::nullopt;
}

}  // namespace gavrel
