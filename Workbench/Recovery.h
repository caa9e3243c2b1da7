#pragma once

#include <qqml.h>
#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QThreadPool>
#include <QTimer>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/FileLock.h"
#include "PreviewContent/ProjectViewModel.h"
#include "Workbench/RecoveryFile.h"

namespace gavrel {

/// Keeps unsaved changes in a recovery file, so that a crash loses at most the last second, and offers the recovery
/// files that former processes have left.
///
/// Another thread writes each change at once, without waiting for it to be drawn. The file is removed when the
/// structure is saved or discarded. Each process has a file and a lock of its own: a locked file belongs to a running
/// process.
class Recovery : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The application makes the one that there is.")
  Q_PROPERTY(bool hasOffer READ hasOffer NOTIFY offerChanged)
  Q_PROPERTY(QString offeredName READ offeredName NOTIFY offerChanged)
  Q_PROPERTY(QString offeredFile READ offeredFile NOTIFY offerChanged)
  Q_PROPERTY(QString offeredTime READ offeredTime NOTIFY offerChanged)
  Q_PROPERTY(qint64 offeredNodes READ offeredNodes NOTIFY offerChanged)
  Q_PROPERTY(qint64 offeredElements READ offeredElements NOTIFY offerChanged)
  Q_PROPERTY(QString offeredReason READ offeredReason NOTIFY offerChanged)
  Q_PROPERTY(QString failure READ failure NOTIFY failureChanged)

 public:
  /// Watches the view model, which outlives this. `folder` is created by the first write.
  Recovery(ProjectViewModel& viewModel, std::filesystem::path folder, QObject* parent = nullptr);
  ~Recovery() override;

  /// Writes all changes to the disk before it returns, or sets `failure`.
  Q_INVOKABLE void flush();

  /// Looks for recovery files of ended processes and offers the newest.
  Q_INVOKABLE void lookForOffer();
  void restoreOffer();
  Q_INVOKABLE void discardOffer();
  /// Keeps the offered file, which the next start offers again.
  Q_INVOKABLE void postponeOffer();

  /// Removes this process's recovery file: its unsaved changes are not needed any more.
  Q_INVOKABLE void forget();

  /// Writes beside the recovery file why this process ends, to be shown with the offer. Does nothing without such a
  /// file.
  void keepReason(std::string_view reason) const;

  [[nodiscard]] bool hasOffer() const { return offer_.has_value(); }
  [[nodiscard]] QString offeredName() const;
  [[nodiscard]] QString offeredFile() const;
  [[nodiscard]] QString offeredTime() const;
  [[nodiscard]] qint64 offeredNodes() const;
  [[nodiscard]] qint64 offeredElements() const;
  /// Why the process that left the offered file has ended; empty if unknown.
  [[nodiscard]] QString offeredReason() const;
  /// Why drawing the offered structure would end the process; empty if it would not.
  [[nodiscard]] QString offeredDanger() const;
  /// Why the last change could not be written; empty if it was.
  [[nodiscard]] const QString& failure() const { return failure_; }

 signals:
  void offerChanged();
  void failureChanged();

 private:
  struct Offer {
    std::filesystem::path file;
    FileLock lock;
    RecoveredProject content;
    std::string reason;
  };

  void edited();
  /// Hands the writer a copy, which replaces one that it has not begun to write.
  void write();
  void writeLatest();
  void written(const QString& failure);
  void finishWriting();
  void look(int furtherTries);
  void removeOfferedFile();

  ProjectViewModel& viewModel_;
  const std::filesystem::path folder_;
  const std::filesystem::path file_;
  std::optional<FileLock> lock_;
  std::optional<Offer> offer_;
  std::vector<std::filesystem::path> postponed_;
  QString failure_;
  QTimer soon_;
  QElapsedTimer sinceCopy_;  // since the last copy was begun
  qint64 copyTime_ = 0;      // how long it took, in milliseconds
  bool pending_ = false;     // there are changes not yet handed to the writer
  std::mutex latestMutex_;
  std::optional<RecoveredProject> latest_;  // the copy to write; shared with the writer
  QThreadPool writer_;  // one thread; declared last, so that it ends before what it uses is destroyed
};

}  // namespace gavrel
