#include "Workbench/Recovery.h"

#include <QCoreApplication>
#include <QLocale>
#include <QUuid>
#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

#include "Platform/AtomicFile.h"
#include "Platform/Console.h"
#include "Platform/FileBytes.h"
#include "Platform/ShownText.h"
#include "Platform/TemporaryFile.h"
#include "PreviewContent/Drawable.h"

namespace gavrel {

namespace fs = std::filesystem;

namespace {

constexpr qint64 pausesForACopy = 5;  // so that copying takes at most a sixth of the main thread's time
// Milliseconds between copies. Without the shortest pause, quick changes would flush to the disk all the time.
constexpr qint64 shortestPause = 50;
constexpr qint64 longestPause = 250;
// A killed process may hold its lock for a moment longer.
constexpr int retries = 5;
constexpr int retryDelay = 1000;  // milliseconds
constexpr const char* extension = ".recovery";

fs::path lockPath(const fs::path& file) {
  return file.string() + ".lock";
}

/// The file beside a recovery file that says why the process has ended, if that is known.
fs::path reasonPath(const fs::path& file) {
  return file.string() + ".reason";
}

/// The recovery files in the folder, the last written first.
std::vector<fs::path> listRecoveryFiles(const fs::path& folder) {
  std::vector<std::pair<fs::file_time_type, fs::path>> found;
  std::error_code unreadable;
  for (const auto& entry : fs::directory_iterator(folder, unreadable))
    if (entry.path().extension() == extension) found.emplace_back(entry.last_write_time(unreadable), entry.path());
  std::ranges::sort(found, std::greater());
  std::vector<fs::path> files;
  files.reserve(found.size());
  for (auto& [time, file] : found) files.push_back(std::move(file));
  return files;
}

}  // namespace

Recovery::Recovery(ProjectViewModel& viewModel, fs::path folder, QObject* parent)
    : QObject(parent),
      viewModel_(viewModel),
      folder_(std::move(folder)),
      file_(folder_ / (QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString() + extension)) {
  writer_.setMaxThreadCount(1);
  soon_.setSingleShot(true);
  connect(&soon_, &QTimer::timeout, this, &Recovery::write);
  connect(&viewModel, &ProjectViewModel::structureEdited, this, &Recovery::edited);
  connect(&viewModel, &ProjectViewModel::changesAtRisk, this, &Recovery::flush);
  connect(&viewModel, &ProjectViewModel::unsavedChangesChanged, this, [this] {
    if (!viewModel_.hasUnsavedChanges()) forget();
  });
}

Recovery::~Recovery() {
  writer_.waitForDone();
  std::error_code ignored;
  if (lock_ && !fs::exists(file_, ignored)) fs::remove(lockPath(file_), ignored);
}

void Recovery::edited() {
  pending_ = true;
  if (soon_.isActive()) return;
  // The first change is copied at once, before the slower drawing; quick changes after it wait for the pause.
  const qint64 pause = std::clamp(copyTime_ * pausesForACopy, shortestPause, longestPause);
  const qint64 rest = sinceCopy_.isValid() ? pause - sinceCopy_.elapsed() : 0;
  soon_.start(static_cast<int>(std::max<qint64>(rest, 0)));
}

void Recovery::write() {
  if (!pending_) return;
  pending_ = false;
  if (!lock_) {
    std::error_code ignored;
    fs::create_directories(folder_, ignored);
    fs::permissions(folder_, fs::perms::owner_all, ignored);
    lock_ = FileLock::take(lockPath(file_));
  }
  sinceCopy_.start();
  const auto [file, stamp] = viewModel_.origin();
  RecoveredProject latest{(*viewModel_.project)->copy(), file, stamp, QDateTime::currentDateTime()};
  copyTime_ = sinceCopy_.elapsed();
  {
    const std::scoped_lock guard(latestMutex_);
    latest_ = std::move(latest);
  }
  writer_.start([this] { writeLatest(); });
}

void Recovery::writeLatest() {
  std::optional<RecoveredProject> latest;
  {
    const std::scoped_lock guard(latestMutex_);
    latest.swap(latest_);
  }
  if (!latest) return;  // an earlier run has written it
  const auto failure = writeRecovery(file_, *latest);
  const auto reason = failure ? QString::fromStdString(failure->reason) : QString();
  QMetaObject::invokeMethod(
      this, [this, reason] { written(reason); }, Qt::QueuedConnection);
}

void Recovery::written(const QString& failure) {
  pending_ |= !failure.isEmpty();  // the next change or flush tries again
  if (std::exchange(failure_, failure) != failure) emit failureChanged();
}

void Recovery::flush() {
  if (!viewModel_.hasUnsavedChanges()) return;
  finishWriting();
  write();
  finishWriting();
}

void Recovery::finishWriting() {
  writer_.waitForDone();
  QCoreApplication::sendPostedEvents(this);  // delivers the writer's result to `written`
}

void Recovery::forget() {
  pending_ = false;
  soon_.stop();
  finishWriting();
  pending_ = false;  // a failed last write has set it again
  std::error_code ignored;
  fs::remove(file_, ignored);
  fs::remove(reasonPath(file_), ignored);
  if (!std::exchange(failure_, {}).isEmpty()) emit failureChanged();
}

void Recovery::lookForOffer() {
  sweepTemporaryFiles(folder_);
  look(retries);
}

void Recovery::look(int furtherTries) {
  bool locked = false;
  for (const fs::path& file : listRecoveryFiles(folder_)) {
    if (file == file_ || std::ranges::find(postponed_, file) != postponed_.end()) continue;
    auto lock = FileLock::take(lockPath(file));
    locked |= !lock;
    if (!lock) continue;
    auto content = readRecovery(file);
    if (!content) {
      printWarning("the recovery file " + shownText(file.string()) + " is left alone: " + content.failure().reason);
      continue;
    }
    const auto reason = readFile(reasonPath(file));
    offer_ = Offer{file, std::move(*lock), std::move(*content), reason ? *reason : ""};
    emit offerChanged();
    return;
  }
  if (locked && furtherTries > 0)
    QTimer::singleShot(retryDelay, this, [this, furtherTries] { look(furtherTries - 1); });
}

void Recovery::restoreOffer() {
  if (!offer_) return;
  viewModel_.restore(offer_->content.project, {offer_->content.file, offer_->content.stamp});
  flush();
  if (failure_.isEmpty()) removeOfferedFile();
  postponeOffer();
}

void Recovery::discardOffer() {
  if (!offer_) return;
  removeOfferedFile();
  postponeOffer();
  lookForOffer();
}

void Recovery::postponeOffer() {
  if (!offer_) return;
  postponed_.push_back(offer_->file);
  offer_.reset();
  emit offerChanged();
}

void Recovery::removeOfferedFile() {
  std::error_code ignored;
  fs::remove(offer_->file, ignored);
  fs::remove(reasonPath(offer_->file), ignored);
  fs::remove(lockPath(offer_->file), ignored);
}

void Recovery::keepReason(std::string_view reason) const {
  std::error_code ignored;
  if (!fs::exists(file_, ignored)) return;
  if (const auto failure = replaceFile(reasonPath(file_), reason)) printWarning(failure->reason);
}

QString Recovery::offeredReason() const {
  return offer_ ? QString::fromStdString(offer_->reason) : QString();
}

QString Recovery::offeredDanger() const {
  const auto danger = offer_ ? whyNotDrawable(*offer_->content.project) : std::nullopt;
  return danger ? QString::fromStdString(danger->reason) : QString();
}

QString Recovery::offeredName() const {
  return offer_ ? QString::fromStdString(*offer_->content.project->name) : QString();
}

QString Recovery::offeredFile() const {
  return offer_ ? QString::fromStdString(offer_->content.file.value_or("").filename().string()) : QString();
}

QString Recovery::offeredTime() const {
  return offer_ ? QLocale().toString(offer_->content.time, QLocale::ShortFormat) : QString();
}

qint64 Recovery::offeredNodes() const {
  return offer_ ? offer_->content.project->nodeCount() : 0;
}

qint64 Recovery::offeredElements() const {
  if (!offer_) return 0;
  return std::ssize(*offer_->content.project->trussElements) + std::ssize(*offer_->content.project->beamElements);
}

}  // namespace gavrel
