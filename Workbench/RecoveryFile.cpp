#include "Workbench/RecoveryFile.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "DataModel/ProjectFile.h"
#include "Platform/AtomicFile.h"
#include "Platform/FileBytes.h"
#include "Platform/ShownText.h"

namespace gavrel {

namespace {

constexpr std::size_t checksumSize = 64;  // hexadecimal digits

/// SHA-256 by OpenSSL, which has several times the speed of QCryptographicHash.
class Checksum {
 public:
  Checksum() { EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr); }

  void add(std::string_view piece) { EVP_DigestUpdate(context_.get(), piece.data(), piece.size()); }

  [[nodiscard]] std::string digits() {
    std::array<unsigned char, checksumSize / 2> digest{};
    EVP_DigestFinal_ex(context_.get(), digest.data(), nullptr);
    return QByteArray(reinterpret_cast<const char*>(digest.data()), std::ssize(digest)).toHex().toStdString();
  }

 private:
  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context_{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
};

template <class Value>
std::string_view viewBytes(const Value* values, std::size_t count) {
  return {reinterpret_cast<const char*>(values), count * sizeof(Value)};
}

class SectionWriter {
 public:
  explicit SectionWriter(const ByteSink& sink) : sink_(sink) {}

  void text(const std::string& key, std::string_view bytes) {
    head(key, bytes.size());
    sink_(bytes);
  }

  void numbers(const std::string& key, const std::vector<double>& values) {
    text(key, viewBytes(values.data(), values.size()));
  }

  /// `count` values, each as `readValue` gives it for its place.
  template <class Value, class ValueOf>
  void column(const std::string& key, std::size_t count, const ValueOf& readValue) {
    head(key, count * sizeof(Value));
    std::array<Value, 8192> block{};
    for (std::size_t start = 0; start < count; start += block.size()) {
      const std::size_t length = std::min(block.size(), count - start);
      for (std::size_t i = 0; i < length; ++i) block[i] = readValue(start + i);
      sink_(viewBytes(block.data(), length));
    }
  }

  template <class Record>
  void elements(const std::string& key, const std::vector<Record>& elements) {
    forEachField<Record>([&]<class Value>(const ElementField<Record, Value>& field) {
      column<Value>(key + "." + std::string(field.key), elements.size(),
                    [&](std::size_t i) { return elements[i].*field.member; });
    });
  }

 private:
  void head(const std::string& key, std::size_t size) { sink_(key + " " + std::to_string(size) + "\n"); }

  const ByteSink& sink_;
};

/// Thrown by SectionReader for missing content.
struct Missing {
  std::string key;
};

class SectionReader {
 public:
  /// `text` outlives this.
  explicit SectionReader(std::string_view text) {
    while (!text.empty()) {
      const std::string_view head = text.substr(0, text.find('\n'));
      const std::size_t space = head.rfind(' ');
      if (space == std::string_view::npos) throw Missing{std::string(head)};
      std::size_t size = 0;
      std::from_chars(head.data() + space + 1, head.data() + head.size(), size);
      text.remove_prefix(std::min(head.size() + 1, text.size()));
      if (size > text.size()) throw Missing{std::string(head)};
      sections_[std::string(head.substr(0, space))] = text.substr(0, size);
      text.remove_prefix(size);
    }
  }

  [[nodiscard]] std::string_view text(const std::string& key) const {
    const auto found = sections_.find(key);
    if (found == sections_.end()) throw Missing{key};
    return found->second;
  }

  template <class Value>
  [[nodiscard]] std::vector<Value> values(const std::string& key) const {
    const std::string_view bytes = text(key);
    if (bytes.size() % sizeof(Value) != 0) throw Missing{key};
    std::vector<Value> values(bytes.size() / sizeof(Value));
    if (!values.empty()) std::memcpy(values.data(), bytes.data(), values.size() * sizeof(Value));
    return values;
  }

  [[nodiscard]] std::vector<bool> truths(const std::string& key) const {
    const std::string_view bytes = text(key);
    return std::vector<bool>(bytes.begin(), bytes.end());
  }

  template <class Record>
  [[nodiscard]] std::vector<Record> elements(const std::string& key) const {
    std::vector<Record> elements;
    forEachField<Record>([&]<class Value>(const ElementField<Record, Value>& field) {
      const std::string column = key + "." + std::string(field.key);
      const std::string_view bytes = text(column);
      if (elements.empty()) elements.resize(bytes.size() / sizeof(Value));
      if (bytes.size() != elements.size() * sizeof(Value)) throw Missing{column};
      // Only the bytes 0 and 1 are valid as bool.
      if (std::is_same_v<Value, bool> && bytes.find_first_not_of(std::string_view("\0\1", 2)) != bytes.npos)
        throw Missing{column};
      for (std::size_t i = 0; i < elements.size(); ++i)
        std::memcpy(&(elements[i].*field.member), bytes.data() + i * sizeof(Value), sizeof(Value));
    });
    return elements;
  }

 private:
  std::map<std::string, std::string_view> sections_;
};

void write(const RecoveredProject& recovered, const ByteSink& sink) {
  const Project& project = *recovered.project;
  SectionWriter sections(sink);
  sections.text("file", recovered.file.value_or("").string());
  const auto& stamp = recovered.stamp;
  sections.text("stamp", stamp ? viewBytes(&*stamp, 1) : "");
  sections.text("time", recovered.time.toString(Qt::ISODateWithMs).toStdString());
  sections.text("name", *project.name);
  sections.elements("trussElements", *project.trussElements);
  sections.elements("beamElements", *project.beamElements);
  sections.numbers("X_I", *project.X_I);
  sections.numbers("F_I", *project.F_I);
  sections.column<char>("D_I", project.D_I->size(),
                        [&](std::size_t i) { return static_cast<char>((*project.D_I)[i]); });
}

RecoveredProject read(const SectionReader& sections) {
  const std::filesystem::path file = sections.text("file");
  const auto stamp = sections.values<FileStamp>("stamp");
  const auto time = QString::fromStdString(std::string(sections.text("time")));
  ProjectContents contents{std::string(sections.text("name")),
                           sections.elements<TrussElement>("trussElements"),
                           sections.elements<BeamElement>("beamElements"),
                           sections.values<double>("X_I"),
                           sections.values<double>("F_I"),
                           sections.truths("D_I")};
  return {makeProject(std::move(contents)), file.empty() ? std::nullopt : std::optional(file),
          stamp.empty() ? std::nullopt : std::optional(stamp.front()), QDateTime::fromString(time, Qt::ISODateWithMs)};
}

}  // namespace

std::optional<Failure> writeRecovery(const std::filesystem::path& path, const RecoveredProject& recovered) {
  return replaceFile(path, [&](const ByteSink& sink) {
    Checksum checksum;
    write(recovered, [&](std::string_view piece) {
      checksum.add(piece);
      sink(piece);
    });
    sink(checksum.digits());
  });
}

Result<RecoveredProject> readRecovery(const std::filesystem::path& path) try {
  const auto file = readFile(path);
  if (!file) return file.failure();
  const std::string_view text = *file;
  if (text.size() < checksumSize) return Failure{"it is cut short"};
  const std::string_view content = text.substr(0, text.size() - checksumSize);
  Checksum checksum;
  checksum.add(content);
  if (checksum.digits() != text.substr(content.size())) return Failure{"its checksum is wrong"};
  return read(SectionReader(content));
} catch (const Missing& missing) {
  return Failure{"another version has written it: " + shownText(missing.key) + " is not there"};
}

}  // namespace gavrel
