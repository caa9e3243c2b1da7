#include "Platform/BundleInfo.h"

#include <plist/plist.h>

#include <cstdlib>
#include <memory>
#include <system_error>

#include "Platform/FileBytes.h"

namespace {

using Dictionary = decltype(BundleInfo::dictionary);

/// The texts of a property list's top-level dictionary; empty if it cannot be read.
Dictionary textsOf(const std::filesystem::path& propertyList) {
  Dictionary texts;
  const auto bytes = readFile(propertyList);
  if (!bytes) return texts;
  plist_t parsed = nullptr;
  plist_from_memory(bytes->data(), static_cast<std::uint32_t>(bytes->size()), &parsed);
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

}  // namespace

std::optional<std::string> BundleInfo::text(std::string_view key) const {
  const auto found = dictionary.find(key);
  return found == dictionary.end() ? std::nullopt : std::optional(found->second);
}

BundleInfo BundleInfo::around(const std::filesystem::path& program, Dictionary otherwise) {
  for (auto folder = program.parent_path(); folder != folder.root_path(); folder = folder.parent_path()) {
    if (folder.extension() != ".app") continue;
    BundleInfo found{folder, program.lexically_relative(folder), textsOf(folder / "Info.plist")};
    if (found.text("CFBundleExecutable") == found.executable.string()) return found;
  }
  return {{}, {}, std::move(otherwise)};
}

std::filesystem::path runningProgram() {
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/exe", unknown);
}
