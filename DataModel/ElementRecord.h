#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <tuple>
#include <type_traits>

namespace gavrel {

/// What trusses and beams have in common: records with one table of their fields, in declaration order, which is used
/// to write and read files and to compute hashes.

/// Lengths up to this one count as zero: such an element has no stiffness.
inline constexpr double zeroLength = 1e-9;

/// One field of a record: its key in project files and the member that holds it.
template <class Record, class Value>
struct ElementField {
  std::string_view key;
  Value Record::*member;
};
template <class Record, class Value>
ElementField(const char*, Value Record::*) -> ElementField<Record, Value>;

/// Calls `visit(field)` for each field of `Record` in declaration order.
template <class Record, class Visit>
constexpr void forEachField(Visit&& visit) {
  std::apply([&](const auto&... field) { (visit(field), ...); }, Record::fields);
}

/// Hash of all fields in declaration order. Equal records have equal hashes: negative zero counts as zero.
template <class Record>
[[nodiscard]] std::size_t hashOfFields(const Record& record) {
  constexpr std::uint64_t offset = 0xcbf29ce484222325;  // FNV-1a, over whole words
  constexpr std::uint64_t prime = 0x100000001b3;
  std::uint64_t hash = offset;
  forEachField<Record>([&](const auto& field) {
    const auto value = record.*field.member;
    std::uint64_t word = 0;
    if constexpr (std::is_same_v<decltype(value), const double>) {
      word = value == 0.0 ? 0 : std::bit_cast<std::uint64_t>(value);
    } else {
      word = static_cast<std::uint64_t>(value);
    }
    hash = (hash ^ word) * prime;
    hash ^= hash >> 32;
  });
  return static_cast<std::size_t>(hash);
}

}  // namespace gavrel
