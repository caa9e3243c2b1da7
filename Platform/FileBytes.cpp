#include "Platform/FileBytes.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "Platform/FileDescriptor.h"
#include "Platform/ShownText.h"

namespace gavrel {

namespace {

constexpr std::size_t smallestRead = std::size_t{64} * 1024;
constexpr std::size_t spareRoom = 256;  // parsers read a little beyond the end; with room there the text is not copied

/// Room for a file of the size in `status` and one byte more, so that its end is found without growing the buffer.
std::size_t expectedSize(const struct stat& status) {
  return S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) + 1 : 0;
}

}  // namespace

Failure systemFailure(const std::string& attempt, const std::filesystem::path& path, int code) {
  return {attempt + " " + shownPath(path) + ": " + std::generic_category().message(code)};
}

Result<std::string> readFile(const std::filesystem::path& path, std::uint64_t largest) {
  const auto tooLarge = [&](const std::string& size) {
    return Failure{"cannot read " + shownPath(path) + ": it has " + size + " bytes, and at most " +
                   std::to_string(largest) + " can be read"};
  };
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.isOpen()) return systemFailure("cannot open", path, errno);
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) return systemFailure("cannot read", path, errno);

  if (const auto size = static_cast<std::uint64_t>(status.st_size); S_ISREG(status.st_mode) && size > largest)
    return tooLarge(std::to_string(size));

  std::string bytes;
  std::size_t filled = 0;
  bytes.reserve(std::max(expectedSize(status), smallestRead) + spareRoom);
  bytes.resize(bytes.capacity() - spareRoom);
  while (true) {
    if (filled == bytes.size()) bytes.resize(2 * bytes.size());
    const ssize_t got = ::read(file.get(), bytes.data() + filled, bytes.size() - filled);
    if (got == 0) break;
    if (got > 0) {
      filled += static_cast<std::size_t>(got);
      if (filled > largest) return tooLarge("more than " + std::to_string(largest));
    } else if (errno != EINTR) {
      return systemFailure("cannot read", path, errno);
    }
  }
  bytes.resize(filled);
  return bytes;
}

}  // namespace gavrel
