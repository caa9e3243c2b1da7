#include "Managers/InstallerScript.h"

#include <gtest/gtest.h>

using namespace gavrel;

namespace {

TEST(InstallerScript, WhereBundlesAreOpened) {
  EXPECT_EQ(bundleInstallerScript("/A b/G.app", "/t/extracted/G $2.app"),
            "#!/bin/bash\n"
            "sleep 2\n"
            "mv \"/A b/G.app\" \"/A b/G.app.old\"\n"
            "cp -R \"/t/extracted/G $2.app\" \"/A b/\"\n"
            "if [ $? -eq 0 ]; then\n"
            "    rm -rf \"/A b/G.app.old\"\n"
            "    chmod -R 755 \"/A b/G.app\"\n"
            "    xattr -dr com.apple.quarantine \"/A b/G.app\"\n"
            "    open \"/A b/G.app\"\n"
            "else\n"
            "    mv \"/A b/G.app.old\" \"/A b/G.app\"\n"
            "fi");
}

TEST(InstallerScript, FirstEntryWithTheExtension) {
  EXPECT_EQ(firstAppEntry({"a.App", "b.app.old", ".app", "app", "c d.app", "e.app"}), "c d.app");
  EXPECT_EQ(firstAppEntry({".hidden.app", "x.app"}), ".hidden.app");
  EXPECT_EQ(firstAppEntry({}), std::nullopt);
}

}  // namespace
