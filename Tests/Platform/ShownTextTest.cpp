#include "Platform/ShownText.h"

#include <gtest/gtest.h>

using namespace gavrel;

using namespace std::string_literals;

TEST(ShownText, EscapesWhatATerminalObeysAndNothingElse) {
  const std::pair<std::string, std::string> cases[] = {
      {"Brücke \\n \"3\" – 橋 🌉", "Brücke \\n \"3\" – 橋 🌉"},
      {"a\nb\r\tc\0d"s, "a\\nb\\x0d\\tc\\x00d"},
      {"\x1b[2J\x7f", "\\x1b[2J\\x7f"},
      {"\xC2\x80\xC2\x9F\xC2\xA0", "\\u0080\\u009f\xC2\xA0"},
      {"\u061C\u200E\u200F\u200D", "\\u061c\\u200e\\u200f\u200D"},
      {"\u2028\u2029\u202A\u202E\u202F\u2066\u2069\u206A", "\\u2028\\u2029\\u202a\\u202e\u202F\\u2066\\u2069\u206A"},
      // A lone continuation, an overlong form, a surrogate, one too large, one that is cut off.
      {"\x80 \xC0\x8A \xED\xA0\x80 \xF4\x90\x80\x80 \xFF \xE2\x82",
       "\\x80 \\xc0\\x8a \\xed\\xa0\\x80 \\xf4\\x90\\x80\\x80 \\xff \\xe2\\x82"}};
  for (const auto& [text, shown] : cases) EXPECT_EQ(shownText(text), shown);
}

TEST(ShownText, ShowsTheBeginningOfALongText) {
  EXPECT_EQ(shownText("äöü", 3), "äöü");
  EXPECT_EQ(shownText("äöü\n", 3), "äöü…");
  EXPECT_EQ(shownQuoted(std::string(60, 'x')), '"' + std::string(60, 'x') + '"');
  // NOLINTNEXTLINE(bugprone-string-constructor): meant to be long.
  EXPECT_EQ(shownQuoted(std::string(100'000'000, '\n')).size(), 125u);
}
