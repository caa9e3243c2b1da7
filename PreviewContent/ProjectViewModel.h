#pragma once

#include <QObject>
#include <QString>
#include <QUrl>
#include <QVariantList>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "DataModel/Project.h"
#include "Exchange/Import.h"
#include "Platform/FileStamp.h"
#include "Platform/Observable.h"
#include "PreviewContent/AppMode.h"
#include "PreviewContent/SheetContents.h"

namespace gavrel {

/// The one observable object between the user interface and the model. Observers of `objectWillChange` are told before
/// each change of a published property; the notifications of the Qt properties follow the change. Each operation says
/// what it did in one line on standard output. Those that add to the structure or change loads and supports first make
/// its arrays fit its nodes, see fitArrays, and do nothing where that fails; a line and `remark` tell of it.
class ProjectViewModel : public QObject {
  Q_OBJECT
  Q_PROPERTY(int appMode READ modeNumber WRITE setModeNumber NOTIFY appModeChanged)
  Q_PROPERTY(
      QVariantList selectedNodesForTruss READ selectedNodes WRITE setSelectedNodes NOTIFY selectedNodesForTrussChanged)
  Q_PROPERTY(QString lastUsedStartX READ startX WRITE setLastUsedStartX NOTIFY lastUsedChanged)
  Q_PROPERTY(QString lastUsedStartY READ startY WRITE setLastUsedStartY NOTIFY lastUsedChanged)
  Q_PROPERTY(QString lastUsedStartZ READ startZ WRITE setLastUsedStartZ NOTIFY lastUsedChanged)
  Q_PROPERTY(bool lastUsedConnectToLast READ connectToLast WRITE setLastUsedConnectToLast NOTIFY lastUsedChanged)
  Q_PROPERTY(qint64 numberOfNodes READ nodeCounter NOTIFY projectChanged)
  Q_PROPERTY(qint64 numberOfElements READ numberOfElements NOTIFY projectChanged)
  Q_PROPERTY(QString projectName READ projectName NOTIFY projectChanged)
  Q_PROPERTY(bool isStrainVisualizationActive READ strainActive WRITE setIsStrainVisualizationActive NOTIFY
                 isStrainVisualizationActiveChanged)
  Q_PROPERTY(QString currentFileName READ currentFileName NOTIFY currentFileChanged)
  Q_PROPERTY(bool currentFileHoldsIt READ currentFileHoldsIt NOTIFY currentFileHoldsItChanged)
  Q_PROPERTY(bool hasUnsavedChanges READ hasUnsavedChanges NOTIFY unsavedChangesChanged)
  Q_PROPERTY(bool hasPrevious READ hasPrevious NOTIFY projectChanged)
  Q_PROPERTY(bool hasMarks READ hasMarks NOTIFY marksChanged)
  Q_PROPERTY(bool hasResults READ hasResults NOTIFY resultsChanged)
  Q_PROPERTY(bool resultsOutdated READ resultsOutdated NOTIFY resultsChanged)
  Q_PROPERTY(QString remark READ remark NOTIFY remarkChanged)

 public:
  /// Nodes and elements, by their position, that are highlighted in the 3D area.
  struct Marks {
    std::vector<std::int64_t> nodes = {};
    std::vector<std::int64_t> trusses = {};
    std::vector<std::int64_t> beams = {};
  };

  /// The file that a structure came from, and the file's state at that time.
  struct Origin {
    std::optional<std::filesystem::path> file;
    std::optional<FileStamp> stamp;
  };

  enum class ChangeOnDisk { none, changed, removed };

  Observable objectWillChange;

  Published<std::shared_ptr<Project>> project;
  Published<AppMode> appMode;
  Published<std::vector<std::int64_t>> selectedNodesForTruss;
  Published<QString> lastUsedStartX;
  Published<QString> lastUsedStartY;
  Published<QString> lastUsedStartZ;
  Published<bool> lastUsedConnectToLast;
  Published<std::int64_t> numberOfNodes;  ///< counted beside the project; the next node's identifier
  Published<bool> isStrainVisualizationActive;
  std::optional<std::filesystem::path> currentFileUrl;  ///< last saved to or opened

  /// An empty project named "New Project" in normal mode.
  explicit ProjectViewModel(QObject* parent = nullptr);

  /// Appends a node and, if asked to and if there is one, ties it to the one before with a bar of area 25 and Young's
  /// modulus 100000.
  void addNode(const Vector3& nodeCoordinates, bool connectedToLast);
  Q_INVOKABLE void addNode(double x, double y, double z, bool connectedToLast) { addNode({x, y, z}, connectedToLast); }

  /// Appends a non-linear bar that takes tension and compression. Nodes that do not exist are reported and nothing is
  /// added; negative identifiers are fatal.
  Q_INVOKABLE void addTruss(qint64 startNodeId, qint64 endNodeId, double area, double youngModulus);

  /// Appends a linear beam with second moments of area iy and iz; nodes as in addTruss.
  Q_INVOKABLE void addBeam(qint64 startNodeId, qint64 endNodeId, double area, double iy, double iz, double youngModulus,
                           double shearModulus);

  /// Writes the project to `target`, which becomes the current file even if the write fails, or to the current file.
  /// False, with the reason on standard output, if there is neither or the file could not be written; the structure
  /// then counts as unsaved.
  bool saveProject(const std::optional<std::filesystem::path>& target);
  Q_INVOKABLE bool saveProject(const QUrl& target = {});

  /// Replaces the project by that in the file. One that cannot be read is reported on standard output and leaves an
  /// empty project and no current file.
  bool loadProject(const std::optional<std::filesystem::path>& source);
  Q_INVOKABLE bool loadProject(const QUrl& source);

  /// As loadProject, but a project that would end the process as soon as it is drawn is held back: nothing changes
  /// until `openAnyway` is called.
  bool openProject(const std::optional<std::filesystem::path>& source);
  Q_INVOKABLE bool openProject(const QUrl& source);
  void openAnyway() { loadProject(heldBack_); }

  /// Starts again with an empty project without a file, in normal mode with nothing selected.
  Q_INVOKABLE void newProject();

  /// Publishes a project with unsaved changes, which may have come from a file.
  void restore(std::shared_ptr<Project> structure, const Origin& origin);

  /// Restores the project that was open before a file could not be read.
  void restorePrevious();
  [[nodiscard]] bool hasPrevious() const { return previous_.has_value(); }

  /// What other programs did to the current file since it was read or written here.
  [[nodiscard]] ChangeOnDisk changeOnDisk() const;
  /// The current file and its state when it was last read or written.
  [[nodiscard]] Origin origin() const { return {currentFileUrl, currentFileStamp_}; }
  [[nodiscard]] QString projectName() const;
  /// The current file's name without its folder; empty if there is no current file.
  [[nodiscard]] QString currentFileName() const;
  /// The folder in which file panels begin: that of the current file, or the user's documents.
  [[nodiscard]] QUrl currentFolder() const;
  /// Whether the current file, if there is one, has ever held this structure: not if it could not be written.
  [[nodiscard]] bool currentFileHoldsIt() const { return currentFileUrl == fileThatHoldsIt_; }

  /// Marks the structure as having no unsaved changes.
  Q_INVOKABLE void discardChanges() { setHasUnsavedChanges(false); }
  /// Whether the structure has changed since it was opened, saved or begun. A solve changes results only.
  [[nodiscard]] bool hasUnsavedChanges() const { return hasUnsavedChanges_; }

  /// Reads a node's entries; a negative identifier is fatal.
  [[nodiscard]] Q_INVOKABLE NodeContents nodeContents(qint64 nodeID) const;

  /// Replaces a node's load and translational restraints and announces the change.
  Q_INVOKABLE void setLoadAndRestraint(qint64 nodeID, double x, double y, double z, bool rx, bool ry, bool rz);

  /// The first truss with this identifier.
  [[nodiscard]] Q_INVOKABLE TrussContents trussContents(qint64 elementID) const;

  /// Makes the truss at this position of the list linear or non-linear; a position outside the list is fatal.
  Q_INVOKABLE void setNonLinear(qint64 position, bool isNonLinear);

  /// Makes all trusses at these positions linear.
  void makeLinear(const std::vector<std::int64_t>& positions);

  /// Adds the content of files; see importFiles. Says in one line on standard output what was added, or why nothing
  /// was.
  [[nodiscard]] Result<ImportOutcome> importFiles(const std::vector<std::filesystem::path>& files,
                                                  const ImportSettings& settings);

  [[nodiscard]] const Marks& marks() const { return marks_; }
  void setMarks(Marks value);
  [[nodiscard]] bool hasMarks() const;
  Q_INVOKABLE void clearMarks();

  /// Marks the project's displacements, strains and forces as results of the present structure.
  void announceResults() { setResults(Results::current); }
  /// Whether the project was solved since it was opened or begun. Strains and forces read from a file do not count.
  [[nodiscard]] bool hasResults() const { return results_ != Results::none; }
  /// Whether the structure was changed since it was solved.
  [[nodiscard]] bool resultsOutdated() const { return results_ == Results::outdated; }

  /// What the last edit did to the structure's arrays, or why it was refused; empty if there is nothing to report.
  [[nodiscard]] QString remark() const { return remark_; }

  /// Publishes a project: another one, or the same after a change in place.
  void setProject(std::shared_ptr<Project> value);

  void setAppMode(AppMode value);
  void setSelectedNodesForTruss(std::vector<std::int64_t> value);
  void setLastUsedStartX(const QString& value);
  void setLastUsedStartY(const QString& value);
  void setLastUsedStartZ(const QString& value);
  void setLastUsedConnectToLast(bool value);
  void setIsStrainVisualizationActive(bool value);

 signals:
  void appModeChanged();
  void selectedNodesForTrussChanged();
  void lastUsedChanged();
  void projectChanged();  ///< the project was replaced, or something in it has changed
  void projectLoaded();   ///< the project was replaced
  void isStrainVisualizationActiveChanged();
  void currentFileChanged();
  void currentFileHoldsItChanged();
  void saveFailed(const QString& reason);
  void openFailed(const QString& file, const QString& reason);
  void openHeldBack(const QString& file, const QString& reason);
  void fileUsed();         ///< the current file was read or written
  void structureEdited();  ///< not when another project is opened or begun
  void unsavedChangesChanged();
  void marksChanged();
  void resultsChanged();
  void remarkChanged();
  /// Before an operation that replaces the project or may end the process: keep unsaved changes before returning.
  void changesAtRisk();

 private:
  enum class Results { none, current, outdated };

  /// The project that opening a file replaced, with its state.
  struct Previous {
    std::shared_ptr<Project> project;
    Origin origin;
    bool unsaved;
    Results results;
  };

  [[nodiscard]] bool makeArraysFit();
  void setRemark(const QString& value);
  void announceEdit();
  void finishEdit();
  void setHasUnsavedChanges(bool value);
  void setFileThatHoldsIt(const std::optional<std::filesystem::path>& file);
  bool load(const std::optional<std::filesystem::path>& source, bool onlyIfDrawable);
  void setResults(Results value);
  /// `line`: what to print of it.
  void replace(std::shared_ptr<Project> next, const Origin& origin, bool unsaved, const std::string& line = {});
  void announce();
  template <class Value>
  void set(Published<Value>& property, Value value, void (ProjectViewModel::*changed)());

  bool hasUnsavedChanges_ = false;
  std::optional<FileStamp> currentFileStamp_;
  std::optional<std::filesystem::path> fileThatHoldsIt_;
  std::optional<std::filesystem::path> heldBack_;
  Marks marks_;
  Results results_ = Results::none;
  QString remark_;
  std::optional<Previous> previous_;

  [[nodiscard]] int modeNumber() const { return static_cast<int>(*appMode); }
  void setModeNumber(int value) { setAppMode(static_cast<AppMode>(value)); }
  [[nodiscard]] QVariantList selectedNodes() const;
  void setSelectedNodes(const QVariantList& value);
  [[nodiscard]] QString startX() const { return *lastUsedStartX; }
  [[nodiscard]] QString startY() const { return *lastUsedStartY; }
  [[nodiscard]] QString startZ() const { return *lastUsedStartZ; }
  [[nodiscard]] bool connectToLast() const { return *lastUsedConnectToLast; }
  [[nodiscard]] bool strainActive() const { return *isStrainVisualizationActive; }
  [[nodiscard]] qint64 nodeCounter() const { return *numberOfNodes; }
  [[nodiscard]] qint64 numberOfElements() const;
};

}  // namespace gavrel
