#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QUrl>

/// Files that a user is to choose, and what the panel for it says.
struct FileRequest {
  Q_GADGET

 public:
  enum Purpose { OpenOne, OpenMany, Save };

  Purpose purpose = OpenOne;
  QString title = {};
  QString acceptLabel = {};
  QStringList nameFilters = {};
  QString suffix = {};  ///< of a file to be written, where its user gives none
  QString name = {};    ///< proposed for a file to be written
  QUrl folder = {};     ///< whose files are shown first
};
