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

/// Keeps what has not been saved in a file of its own, so that no end of the process loses more than the last second,
/// and offers what former processes have left so.
///
/// A change is written at once after it was made, by another thread, which the drawing of it does not hold up. The file
/// goes when the structure is saved or given up. Each process has a file and a lock of its own: what is locked belongs
/// to a process that still runs.
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
  /// Watches the view model, which outlives this. `folder` is made when there is something to keep.
  Recovery(ProjectViewModel& viewModel, std::filesystem::path folder, QObject* parent = nullptr);
  ~Recovery() override;

  /// Has all changes on the disk when it returns, or `failure` set.
  Q_INVOKABLE void flush();

  /// Looks for what a process that is gone has left, the newest first, and offers it.
  Q_INVOKABLE void lookForOffer();
  void restoreOffer();
  Q_INVOKABLE void discardOffer();
  /// Leaves it for another time.
  Q_INVOKABLE void postponeOffer();

  /// Declares the unsaved changes worthless.
  Q_INVOKABLE void forget();

  /// Keeps a line that tells why this process ends, for who is offered what it leaves. Nothing where it leaves nothing.
  void keepReason(std::string_view reason) const;

  [[nodiscard]] bool hasOffer() const { return offer_.has_value(); }
  [[nodiscard]] QString offeredName() const;
  [[nodiscard]] QString offeredFile() const;
  [[nodiscard]] QString offeredTime() const;
  [[nodiscard]] qint64 offeredNodes() const;
  [[nodiscard]] qint64 offeredElements() const;
  /// Why the process that left it has ended; empty where it could not tell.
  [[nodiscard]] QString offeredReason() const;
  /// Why drawing it ends the process; empty if it does not.
  [[nodiscard]] QString offeredDanger() const;
  /// Why the last change could not be kept; empty if it is.
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
  /// Hands the writer a copy, in the place of one that it has not begun with.
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
  bool pending_ = false;     // there are changes that no thread has yet been told to write
  std::mutex latestMutex_;
  std::optional<RecoveredProject> latest_;  // to be written; shared with the writer
  QThreadPool writer_;                      // one thread; last, so that it is done before anything else goes
};
