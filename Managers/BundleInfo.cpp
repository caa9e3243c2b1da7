#include "Managers/BundleInfo.h"

#include <plist/plist.h>

#include <cstdlib>
#include <memory>
#include <system_error>
#include <utility>

#include "Platform/FileBytes.h"

namespace gavrel {

namespace {

/// The file's bytes; nothing if it is not a file or too large for a property list.
std::string readBytes(const std::filesystem::path& file) {
  constexpr std::uintmax_t maxBytes = 65536;
  std::error_code unknown;
  if (!std::filesystem::is_regular_file(file, unknown)) return {};
  if (const auto size = std::filesystem::file_size(file, unknown); unknown || size > maxBytes) return {};
  auto bytes = readFile(file);
  return bytes ? std::move(*bytes) : std::string();
}

}  // namespace

BundleInfo::Dictionary BundleInfo::parseTexts(std::string_view xml) {
  Dictionary texts;
  plist_t parsed = nullptr;
  // Not plist_from_memory: it reads binary lists, too, and ends the process if a UTF-16 key in one holds a zero.
  plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &parsed);
  const std::unique_ptr<void, decltype(&plist_free)> root(parsed, &plist_free);
  plist_dict_iter position = nullptr;
  plist_dict_new_iter(root.get(), &position);
  const std::unique_ptr<void, decltype(&std::free)> owner(position, &std::free);
  for (;;) {
    char* key = nullptr;
    plist_t item = nullptr;
    plist_dict_next_item(root.get(), position, &key, &item);
    const std::unique_ptr<char, decltype(&std::free)> keyOwner(key, &std::free);
    if (item == nullptr) return texts;
    std::uint64_t length = 0;
    if (const char* text = plist_get_string_ptr(item, &length)) texts[key] = std::string(text, length);
  }
}

std::optional<std::string> BundleInfo::text(std::string_view key) const {
  const auto found = dictionary.find(key);
  return found == dictionary.end() ? std::nullopt : std::optional(found->second);
}

BundleInfo BundleInfo::read(const std::filesystem::path& folder) {
  BundleInfo found{folder, {}, parseTexts(readBytes(folder / "Info.plist"))};
  found.executable = found.text("CFBundleExecutable").value_or("");
  return found;
}

BundleInfo BundleInfo::findAround(const std::filesystem::path& program, Dictionary otherwise, std::string_view ending) {
  for (auto folder = program.parent_path(); folder != folder.root_path(); folder = folder.parent_path()) {
    const std::string name = folder.filename().string();
    if (!name.ends_with(ending)) continue;
    const std::filesystem::path bundleName = name.substr(0, name.size() - ending.size());
    if (bundleName.extension() != ".app") continue;
    BundleInfo found = read(folder);
    if (found.executable == program.lexically_relative(folder)) return found;
  }
  return {{}, {}, std::move(otherwise)};
}

std::filesystem::path runningProgram() {
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/exe", unknown);
}

}  // namespace gavrel
