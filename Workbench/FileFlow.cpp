#include "Workbench/FileFlow.h"

#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "Platform/Console.h"
#include "Workbench/FileExchange.h"

namespace gavrel {

namespace {

bool isTableOrDrawing(const QUrl& file) {
  const QString name = file.toString().toLower();
  return name.endsWith(QStringLiteral(".csv")) || name.endsWith(QStringLiteral(".dxf"));
}

}  // namespace

void FileFlow::setProjectViewModel(ProjectViewModel* value) {
  viewModel_ = value;
  connect(value, &ProjectViewModel::saveFailed, this, [this](const QString& reason) { saveFailure_ = reason; });
  connect(value, &ProjectViewModel::openFailed, this, &FileFlow::tellOfFailedOpen);
  connect(value, &ProjectViewModel::openHeldBack, this, [this](const QString& file, const QString& reason) {
    askToShow(file, reason, [this] { viewModel_->openAnyway(); });
  });
}

bool FileFlow::busy() const {
  return !shown_.text.isEmpty() || choice_ || !filesToImport_.isEmpty();
}

void FileFlow::newProject() {
  doOnceSavedOrDiscarded([this] { viewModel_->newProject(); });
}

void FileFlow::showOpenPanel() {
  doOnceSavedOrDiscarded([this] {
    choose({.purpose = FileRequest::OpenOne, .title = tr("Open Project"), .nameFilters = {tr("JSON files (*.json)")}},
           [this](const QList<QUrl>& files) { viewModel_->openProject(files.first()); });
  });
}

void FileFlow::open(const QUrl& file) {
  doOnceSavedOrDiscarded([this, file] { viewModel_->openProject(file); });
}

void FileFlow::drop(const QList<QUrl>& files) {
  if (std::ranges::all_of(files, isTableOrDrawing)) {
    filesToImport_ = files;
    emit changed();
  } else if (files.size() == 1) {
    open(files.first());
  } else {
    printLine("Drop one project file at a time.");
  }
}

void FileFlow::restorePrevious() {
  doOnceSavedOrDiscarded([this] { viewModel_->restorePrevious(); });
}

void FileFlow::restore(Recovery* recovery) {
  doOnceSavedOrDiscarded([this, recovery] {
    const QString danger = recovery->offeredDanger();
    if (danger.isEmpty())
      recovery->restoreOffer();
    else
      askToShow(recovery->offeredName(), danger, [recovery] { recovery->restoreOffer(); });
  });
}

bool FileFlow::mayQuit() {
  const bool agreed = std::exchange(quitAgreed_, false);
  if (!viewModel_->hasUnsavedChanges() && (agreed || !wouldLoseTheProject())) return true;
  doOnceSavedOrDiscarded([this] {
    viewModel_->discardChanges();
    quitAgreed_ = true;  // a file that was removed is still missing when the window closes
    emit quitConfirmed();
  });
  return false;
}

void FileFlow::doOnceSavedOrDiscarded(Action action) {
  if (!wouldLoseTheProject()) return action();
  waitingAction_ = std::move(action);
  showNextPrompt();
}

bool FileFlow::wouldLoseTheProject() const {
  return viewModel_->hasUnsavedChanges() ||
         (*viewModel_->numberOfNodes > 0 && viewModel_->changeOnDisk() == ProjectViewModel::ChangeOnDisk::removed);
}

void FileFlow::runWaitingAction() {
  if (const Action action = std::exchange(waitingAction_, {})) action();
}

void FileFlow::save() {
  const auto change = viewModel_->changeOnDisk();
  if (change == ProjectViewModel::ChangeOnDisk::none) return write();
  const bool removed = change == ProjectViewModel::ChangeOnDisk::removed;
  ask({.question = (removed ? tr("Write “%1” anew?") : tr("Overwrite “%1”?")).arg(viewModel_->currentFileName()),
       .text = removed ? tr("Since it was opened or saved here, the file was removed or renamed.")
                       : tr("Since it was opened or saved here, the file was changed by another program or window. "
                            "What was changed there is lost if you overwrite it."),
       .destructiveText = removed ? tr("Write Anew") : tr("Overwrite"),
       .rejectText = tr("Cancel"),
       .defaultText = tr("Save As…"),
       .onDestructive = [this] { write(); },
       .onReject = [this] { waitingAction_ = {}; },
       .onDefault = [this] { showSavePanel(); }});
}

void FileFlow::write() {
  if (writeTo({}))
    runWaitingAction();
  else if (saveFailure_.isEmpty())
    showSavePanel();
  else
    tellOfFailedSave(tr("Save As…"), [this] { showSavePanel(); });
}

void FileFlow::showSavePanel() {
  choose({.purpose = FileRequest::Save,
          .title = tr("Save Project"),
          .acceptLabel = tr("Save"),
          .nameFilters = {tr("JSON files (*.json)")},
          .suffix = QStringLiteral("json"),
          .name = nameForFiles() + QStringLiteral(".json")},
         [this](const QList<QUrl>& files) { saveTo(files.first()); });
}

void FileFlow::saveTo(const QUrl& file) {
  if (writeTo(file)) return runWaitingAction();
  waitingAction_ = {};
  if (!saveFailure_.isEmpty()) tellOfFailedSave(tr("Close"), {});
}

bool FileFlow::writeTo(const QUrl& target) {
  saveFailure_.clear();
  return viewModel_->saveProject(target);
}

void FileFlow::showImportPanel() {
  choose({.purpose = FileRequest::OpenMany,
          .title = tr("Import Tables and Drawings"),
          .acceptLabel = tr("Import"),
          .nameFilters = {tr("Tables and drawings (*.csv *.CSV *.txt *.dxf *.DXF)")}},
         [this](const QList<QUrl>& files) { filesToImport_ = files; });
}

void FileFlow::importFiles(double area, double youngModulus, bool isNonLinear) {
  const bool wasEmpty = *viewModel_->numberOfNodes == 0;
  const QList<QUrl> files = std::exchange(filesToImport_, {});
  const QString remarks = FileExchange(*viewModel_).importFiles(files, area, youngModulus, isNonLinear);
  if (wasEmpty) emit importedIntoEmpty();
  tell(remarks);
}

void FileFlow::exportNodes() {
  exportTo(QStringLiteral("nodes"), QStringLiteral("csv"),
           [this](const QUrl& file) { tell(FileExchange(*viewModel_).exportNodes(file)); });
}

void FileFlow::exportElements() {
  exportTo(QStringLiteral("elements"), QStringLiteral("csv"),
           [this](const QUrl& file) { tell(FileExchange(*viewModel_).exportElements(file)); });
}

void FileFlow::exportVtu() {
  exportTo(nameForFiles(), QStringLiteral("vtu"),
           [this](const QUrl& file) { tell(FileExchange(*viewModel_).exportVtu(file)); });
}

void FileFlow::exportPicture() {
  exportTo(nameForFiles(), QStringLiteral("png"), [this](const QUrl& file) { emit pictureWanted(file); });
}

void FileFlow::writePicture(const QImage& picture, const QUrl& file) {
  tell(FileExchange(*viewModel_).exportPicture(picture, file));
}

void FileFlow::exportTo(const QString& name, const QString& suffix, const std::function<void(const QUrl&)>& write) {
  choose({.purpose = FileRequest::Save,
          .title = tr("Export"),
          .acceptLabel = tr("Export"),
          .nameFilters = {suffix.toUpper() + QStringLiteral(" (*.") + suffix + QStringLiteral(")")},
          .suffix = suffix,
          .name = name + QStringLiteral(".") + suffix},
         [write](const QList<QUrl>& files) { write(files.first()); });
}

QString FileFlow::nameForFiles() const {
  return viewModel_->projectName().replace('/', '-');
}

void FileFlow::choose(FileRequest request, Use use) {
  if (choice_) return;
  request.folder = viewModel_->currentFolder();
  choice_ = {request, std::move(use)};
  emit changed();
  emit filesWanted(request);
}

void FileFlow::takeFiles(const QList<QUrl>& files) {
  if (!choice_) return;
  const Choice choice = *std::exchange(choice_, std::nullopt);
  if (files.isEmpty())
    waitingAction_ = {};
  else if (choice.request.purpose == FileRequest::Save && QFileInfo::exists(files.first().toLocalFile()))
    askToReplace(choice, files);
  else
    choice.use(files);
  showNextPrompt();
}

void FileFlow::answer(Answer given) {
  if (shown_.text.isEmpty()) return;
  const Prompt asked = std::exchange(shown_, {});
  if (!prompts_.empty()) prompts_.pop_back();
  emit changed();  // before the answer has its effect, since that may bring the next prompt
  const Action& action = given == Destructive ? asked.onDestructive
                         : given == Default   ? asked.onDefault
                                              : asked.onReject;
  if (action) action();
  showNextPrompt();
}

void FileFlow::ask(Prompt prompt) {
  prompts_.push_back(std::move(prompt));
  showNextPrompt();
}

void FileFlow::askToReplace(const Choice& choice, const QList<QUrl>& files) {
  const QString name = files.first().fileName();
  ask({.question = tr("Replace “%1”?").arg(name),
       .text = tr("There is a file of this name already. What it holds is lost if it is replaced."),
       .destructiveText = tr("Replace"),
       .rejectText = tr("Cancel"),
       .defaultText = tr("Choose Another Name"),
       .onDestructive = [choice, files] { choice.use(files); },
       .onReject = [this] { waitingAction_ = {}; },
       .onDefault =
           [this, choice, name] {
             FileRequest again = choice.request;
             again.name = name;
             choose(again, choice.use);
           }});
}

void FileFlow::askToShow(const QString& name, const QString& danger, const Action& show) {
  ask({.question = tr("Open “%1” although that ends Gavrel?").arg(name),
       .text = tr("It has an element whose node does not exist: %1. Showing it ends the program.\n\n"
                  "If you cancel, the file and the structure that is open stay as they are.")
                   .arg(danger),
       .destructiveText = tr("Open Anyway"),
       .defaultText = tr("Cancel"),
       .onDestructive = show});
}

void FileFlow::tell(const QString& text) {
  if (text.isEmpty()) return showNextPrompt();
  ask({.text = text, .rejectText = tr("Close")});
}

void FileFlow::tellOfFailedSave(const QString& rejectText, const Action& afterwards) {
  const QString file = viewModel_->currentFileName();
  ask({.text = tr("“%1” was not saved.").arg(file.isEmpty() ? viewModel_->projectName() : file) + "\n\n" + saveFailure_,
       .rejectText = rejectText,
       .onReject = afterwards});
}

void FileFlow::tellOfFailedOpen(const QString& file, const QString& reason) {
  ask({.text = tr("“%1” was not opened. The structure is empty now.").arg(file) + "\n\n" + reason,
       .rejectText = tr("Close"),
       .defaultText = viewModel_->hasPrevious() ? tr("Restore Previous Structure") : QString(),
       .onDefault = [this] { viewModel_->restorePrevious(); }});
}

Prompt FileFlow::saveQuestion() {
  const QString file = viewModel_->currentFileName();
  const bool changed = viewModel_->hasUnsavedChanges();
  return {.question = (changed ? tr("Save the changes to “%1”?") : tr("Save “%1”?"))
                          .arg(file.isEmpty() ? viewModel_->projectName() : file),
          .text = changed ? tr("They are lost otherwise.")
                          : tr("Since it was opened or saved here, the file was removed or renamed. "
                               "If it was removed, the structure is lost otherwise."),
          .destructiveText = tr("Discard"),
          .rejectText = tr("Cancel"),
          .defaultText = tr("Save"),
          .onDestructive = [this] { runWaitingAction(); },
          .onReject = [this] { waitingAction_ = {}; },
          .onDefault = [this] { save(); }};
}

/// Shows the latest prompt or, if there is none and no file panel is open, the question about unsaved changes.
void FileFlow::showNextPrompt() {
  Prompt next;
  if (!prompts_.empty())
    next = prompts_.back();
  else if (waitingAction_ && !choice_)
    next = saveQuestion();
  if (next.question != shown_.question || next.text != shown_.text) {
    shown_ = {};
    emit changed();  // closes the old sheet: each prompt has a sheet of its own
    shown_ = std::move(next);
  }
  emit changed();
}

}  // namespace gavrel
