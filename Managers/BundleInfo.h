#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace gavrel {

/// An application bundle and its property list. On Linux a bundle is a folder "NAME.app" that holds the program, its
/// resources and a property list "Info.plist", and that can be moved, copied and replaced as a whole.
struct BundleInfo {
  using Dictionary = std::map<std::string, std::string, std::less<>>;

  /// The bundle's folder; absent if the program is in no bundle.
  std::optional<std::filesystem::path> url;
  /// The program inside the bundle, relative to its folder.
  std::filesystem::path executable;
  /// The texts of the information dictionary, such as "CFBundleShortVersionString".
  Dictionary dictionary;

  /// The text under `key`, if there is one.
  [[nodiscard]] std::optional<std::string> text(std::string_view key) const;

  /// The bundle in `folder`, with the texts of its Info.plist; without any texts if that cannot be read.
  [[nodiscard]] static BundleInfo read(const std::filesystem::path& folder);

  /// The innermost bundle around `program`: a folder above it with the extension ".app", and `ending` behind that,
  /// whose Info.plist names this very file as "CFBundleExecutable". A program that is installed into system folders or
  /// run from the build folder has no bundle; its dictionary is then `otherwise`.
  [[nodiscard]] static BundleInfo findAround(const std::filesystem::path& program, Dictionary otherwise = {},
                                             std::string_view ending = "");

  /// The texts of a property list's top-level dictionary; empty if `xml` is not an XML property list.
  [[nodiscard]] static Dictionary parseTexts(std::string_view xml);
};

/// The file that the running process executes, free of symbolic links; empty if the system does not say.
[[nodiscard]] std::filesystem::path runningProgram();

}  // namespace gavrel
