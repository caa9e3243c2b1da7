#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QUrl>

namespace gavrel {

/// What the file panel is to ask for: the kind of files and the texts that it shows.
struct FileRequest {
  Q_GADGET

 public:
  enum Purpose { OpenOne, OpenMany, Save };

  Purpose purpose = OpenOne;
  QString title = {};
  QString acceptLabel = {};
  QStringList nameFilters = {};
  QString suffix = {};  ///< added to the name of a file to write if the user gives none
  QString name = {};    ///< proposed name of a file to write
  QUrl folder = {};     ///< the folder to begin in
};

}  // namespace gavrel
