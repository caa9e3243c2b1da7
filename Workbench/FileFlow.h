#pragma once

#include <qqml.h>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>
#include <functional>
#include <optional>
#include <vector>

#include "PreviewContent/ProjectViewModel.h"
#include "Workbench/FileRequest.h"
#include "Workbench/Prompt.h"
#include "Workbench/Recovery.h"

namespace gavrel {

/// The user's file operations: new, open, save, import, export, quit. Each asks its questions first (about unsaved
/// changes, for a file), then runs, then reports.
///
/// It shows nothing itself: a view shows `prompt`, a file panel upon `filesWanted` and a form for `filesToImport`, and
/// passes the user's input back to `answer`, `takeFiles` and `importFiles`.
class FileFlow : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(gavrel::ProjectViewModel* projectViewModel READ projectViewModel WRITE setProjectViewModel REQUIRED)
  Q_PROPERTY(gavrel::Prompt prompt READ prompt NOTIFY changed)
  Q_PROPERTY(bool interrupted READ interrupted NOTIFY changed)
  Q_PROPERTY(QList<QUrl> filesToImport MEMBER filesToImport_ NOTIFY changed)
  Q_PROPERTY(bool busy READ busy NOTIFY changed)

 public:
  enum Answer { Destructive, Reject, Default };
  Q_ENUM(Answer)

  using QObject::QObject;

  [[nodiscard]] ProjectViewModel* projectViewModel() const { return viewModel_; }
  void setProjectViewModel(ProjectViewModel* value);

  /// The question or notice to show now; its texts are empty if there is none.
  [[nodiscard]] const Prompt& prompt() const { return shown_; }
  /// Whether a prompt other than the question about unsaved changes is waiting.
  [[nodiscard]] bool interrupted() const { return !prompts_.empty(); }
  /// The files for which to show the import form; empty for no form.
  [[nodiscard]] const QList<QUrl>& filesToImport() const { return filesToImport_; }
  /// Whether something waits for the user.
  [[nodiscard]] bool busy() const;

  Q_INVOKABLE void newProject();
  Q_INVOKABLE void showOpenPanel();
  Q_INVOKABLE void open(const QUrl& file);
  /// Opens a project file, or asks how to import tables and drawings.
  Q_INVOKABLE void drop(const QList<QUrl>& files);
  /// Restores the structure that was open before a file could not be read.
  Q_INVOKABLE void restorePrevious();
  /// Restores the structure that the recovery offers.
  Q_INVOKABLE void restore(Recovery* recovery);
  /// Whether the program may end now. Otherwise the user is asked, and `quitConfirmed` follows if they agree.
  [[nodiscard]] Q_INVOKABLE bool mayQuit();

  /// Saves to the current file; asks for a file if there is none.
  Q_INVOKABLE void save();
  Q_INVOKABLE void showSavePanel();

  Q_INVOKABLE void showImportPanel();
  /// Imports `filesToImport`. Elements without a cross-section or Young's modulus in the files get the given one.
  Q_INVOKABLE void importFiles(double area, double youngModulus, bool isNonLinear);

  Q_INVOKABLE void exportNodes();
  Q_INVOKABLE void exportElements();
  Q_INVOKABLE void exportVtu();
  /// Asks for a file, then emits `pictureWanted`, upon which the view calls `writePicture`.
  Q_INVOKABLE void exportPicture();
  Q_INVOKABLE void writePicture(const QImage& picture, const QUrl& file);

  /// Takes the user's answer to `prompt`.
  Q_INVOKABLE void answer(Answer given);
  /// Takes the files chosen upon `filesWanted`; none if the user cancelled.
  Q_INVOKABLE void takeFiles(const QList<QUrl>& files);

 signals:
  void changed();
  void filesWanted(const FileRequest& request);
  void pictureWanted(const QUrl& file);
  void quitConfirmed();
  void importedIntoEmpty();  ///< after an import into an empty structure, even a failed one

 private:
  using Action = std::function<void()>;
  using Use = std::function<void(const QList<QUrl>&)>;

  struct Choice {
    FileRequest request;
    Use use;
  };

  /// Whether no file holds the project as it is: it has unsaved changes, or its file was removed.
  [[nodiscard]] bool wouldLoseTheProject() const;
  void doOnceSavedOrDiscarded(Action action);
  void runWaitingAction();
  void write();
  void saveTo(const QUrl& file);
  [[nodiscard]] bool writeTo(const QUrl& target);

  void choose(FileRequest request, Use use);
  void exportTo(const QString& name, const QString& suffix, const std::function<void(const QUrl&)>& write);
  [[nodiscard]] QString nameForFiles() const;

  void ask(Prompt prompt);
  void askToReplace(const Choice& choice, const QList<QUrl>& files);
  void askToShow(const QString& name, const QString& danger, const Action& show);
  void tell(const QString& text);
  void tellOfFailedSave(const QString& rejectText, const Action& afterwards);
  void tellOfFailedOpen(const QString& file, const QString& reason);
  [[nodiscard]] Prompt saveQuestion();
  void showNextPrompt();

  QPointer<ProjectViewModel> viewModel_;
  Action waitingAction_;     // until unsaved changes are saved or discarded
  bool quitAgreed_ = false;  // since `quitConfirmed` was emitted, until the window asks again
  QString saveFailure_;
  std::optional<Choice> choice_;  // that the user has yet to make
  QList<QUrl> filesToImport_;
  std::vector<Prompt> prompts_;  // the last is shown first
  Prompt shown_;
};

}  // namespace gavrel
