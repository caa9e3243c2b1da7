#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace gavrel {

/// What an application bundle says of itself. On Linux a bundle is a folder "NAME.app" that holds the program, its
/// resources and a property list "Info.plist", and that can be moved, copied and replaced as a whole.
struct BundleInfo {
  using Dictionary = std::map<std::string, std::string, std::less<>>;

  /// The bundle's folder; absent if the program stands in none.
  std::optional<std::filesystem::path> url;
  /// The program inside the bundle, relative to its folder.
  std::filesystem::path executable;
  /// The texts of the information dictionary, such as "CFBundleShortVersionString".
  Dictionary dictionary;

  /// The text under `key`, if there is one.
  [[nodiscard]] std::optional<std::string> text(std::string_view key) const;

  /// The bundle in `folder`, as its Info.plist tells; without any texts if that cannot be read.
  [[nodiscard]] static BundleInfo read(const std::filesystem::path& folder);

  /// The innermost bundle around `program`: a folder above it with the extension ".app", and `ending` behind that,
  /// whose Info.plist names this very file as "CFBundleExecutable". A program installed into system folders, or run
  /// from where it was built, has none; its dictionary is then `otherwise`.
  [[nodiscard]] static BundleInfo findAround(const std::filesystem::path& program, Dictionary otherwise = {},
                                             std::string_view ending = "");

  /// The texts of a property list's top-level dictionary; empty if it is no XML property list.
  [[nodiscard]] static Dictionary parseTexts(std::string_view xml);
};

/// The file that the running process executes, free of symbolic links; empty where the system does not tell.
[[nodiscard]] std::filesystem::path runningProgram();

}  // namespace gavrel
