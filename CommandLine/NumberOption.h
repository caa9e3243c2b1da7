#pragma once

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <functional>
#include <string>

#include "Platform/NumberText.h"
#include "Platform/ShownText.h"

namespace gavrel {

/// A validator for an option's `transform`, since CLI11 itself rounds twice and takes 010 for 8. It accepts the finite
/// numbers for which `allowed` holds and passes on the double that parseNumber reads; `kind` names these numbers in the
/// message for any other text.
[[nodiscard]] inline CLI::Validator exactNumber(const std::string& kind, std::function<bool(double)> allowed) {
  return {[kind, allowed = std::move(allowed)](std::string& text) -> std::string {
            const auto value = parseNumber(text);
            if (!value || !std::isfinite(*value) || !allowed(*value)) return shownQuoted(text) + " is not a " + kind;
            text = numberText(*value);
            return "";
          },
          ""};
}

/// The same for whole numbers in decimal digits, from `least` to `most`.
[[nodiscard]] inline CLI::Validator exactWholeNumber(int least, int most) {
  const std::string range = "[" + std::to_string(least) + " - " + std::to_string(most) + "]";
  return {[least, most, range](std::string& text) -> std::string {
            int value = 0;
            const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
            if (error != std::errc() || end != text.data() + text.size() || value < least || value > most)
              return shownQuoted(text) + " is not a whole number in " + range;
            text = std::to_string(value);
            return "";
          },
          "INT in " + range};
}

}  // namespace gavrel
