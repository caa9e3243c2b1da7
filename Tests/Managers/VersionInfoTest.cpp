#include "Managers/VersionInfo.h"

#include <gtest/gtest.h>

#include <limits>

using namespace gavrel;

namespace {

TEST(VersionInfo, EveryEntryMustDecode) {
  const VersionInfo newer{"1.10", 8, "https://localhost/a.zip", "Says \"more\"\n", false, "12"};
  const QByteArray manifest = "{\"brantel\": " + encode(newer) + "}";
  EXPECT_EQ(decodeManifest(manifest), (QMap<QString, VersionInfo>{{"brantel", newer}}));
  EXPECT_EQ(decodeManifest("{}"), (QMap<QString, VersionInfo>{}));

  const QByteArray good =
      R"({"version":"1","build":-9223372036854775808,"downloadUrl":"","changelog":"","mandatory":true)";
  const auto entry = [&](const char* before, const char* after) {
    return "{\"x\":" + QByteArray(good).replace(before, after) + "}}";
  };
  const auto decoded = decodeManifest(entry("true", R"(true,"minOsVersion":null,"more":[1])"));
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->value("x"), (VersionInfo{"1", std::numeric_limits<qint64>::min(), "", "", true, std::nullopt}));
  for (const QByteArray& bad :
       {entry(R"("version":"1",)", ""), entry("\"1\"", "1"), entry(":-9223372036854775808", ":1.5"),
        entry(":-9223372036854775808", ":9223372036854775808"), entry(":-9223372036854775808", ":\"1\""),
        entry(R"("changelog":"",)", R"("changelog":null,)"), entry("true", "1"),
        entry("true", R"(true,"minOsVersion":12)"), QByteArray("{\"brantel\":" + encode(newer) + ",\"other\":{}}"),
        QByteArray("{\"brantel\":3}"), QByteArray("[" + encode(newer) + "]"), manifest.chopped(1), QByteArray()})
    EXPECT_EQ(decodeManifest(bad), std::nullopt) << bad.toStdString();
}

TEST(VersionInfo, VersionsCompareByNumbers) {
  const auto pairs = [](const char* text) {
    QList<QStringList> all;
    for (const QString& pair : QString(text).split('|')) all.append(pair.split('>'));
    return all;
  };
  for (const QStringList& pair : pairs("1.10>1.2|2.0-beta>1.9|1.2.0.1>1.2|1>|..2..>1.9|0>-1|+3>2")) {
    EXPECT_TRUE(isNewerVersion(pair[0], pair[1])) << pair.join(' ').toStdString();
    EXPECT_FALSE(isNewerVersion(pair[1], pair[0])) << pair.join(' ').toStdString();
  }
  for (const QStringList& pair : pairs("1.2.0>1.2|1.2.beta>1.2|1.2b>1|>0.0|99999999999999999999.1>1| 2.1>1")) {
    EXPECT_FALSE(isNewerVersion(pair[0], pair[1])) << pair.join(' ').toStdString();
    EXPECT_FALSE(isNewerVersion(pair[1], pair[0])) << pair.join(' ').toStdString();
  }
}

}  // namespace
