#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QNetworkProxyFactory>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);
  QNetworkProxyFactory::setUseSystemConfiguration(false);  // the servers are on this machine
  return RUN_ALL_TESTS();
}
