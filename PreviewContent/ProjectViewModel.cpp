#include "PreviewContent/ProjectViewModel.h"

#include <QDir>
#include <QStandardPaths>
#include <algorithm>
#include <string>
#include <utility>

#include "DataModel/ArrayLengths.h"
#include "DataModel/ProjectFile.h"
#include "Platform/Console.h"
#include "Platform/Fatal.h"
#include "Platform/NumberText.h"
#include "PreviewContent/Drawable.h"
#include "PreviewContent/FileUrl.h"

namespace gavrel {

namespace {

// The bar that connects a new node to the one before, independent of the values in the truss form.
constexpr double automaticArea = 25.0;
constexpr double automaticYoungModulus = 100000.0;

QString fileName(const std::filesystem::path& file) {
  return QString::fromStdString(file.filename().string());
}

}  // namespace

ProjectViewModel::ProjectViewModel(QObject* parent)
    : QObject(parent),
      project(objectWillChange, std::make_shared<Project>()),
      appMode(objectWillChange, AppMode::normal),
      selectedNodesForTruss(objectWillChange),
      lastUsedStartX(objectWillChange, QStringLiteral("0.0")),
      lastUsedStartY(objectWillChange, QStringLiteral("0.0")),
      lastUsedStartZ(objectWillChange, QStringLiteral("0.0")),
      lastUsedConnectToLast(objectWillChange, true),
      numberOfNodes(objectWillChange, (*project)->nodeCount()),
      isStrainVisualizationActive(objectWillChange, false) {}

void ProjectViewModel::addNode(const Vector3& nodeCoordinates, bool connectedToLast) {
  const std::int64_t previous = *numberOfNodes - 1;
  const std::int64_t newId = *numberOfNodes;
  setRemark({});
  if (!makeArraysFit()) return;
  (*project)->addNode(nodeCoordinates);
  numberOfNodes.edit() = checkedProduct(1, newId, 1, "The number of nodes");
  if (connectedToLast && previous != -1) addTruss(previous, newId, automaticArea, automaticYoungModulus);
  announceEdit();
  printLine("Added Node: id " + std::to_string(newId) + " at (" + numberText(nodeCoordinates.x) + ", " +
            numberText(nodeCoordinates.y) + ", " + numberText(nodeCoordinates.z) + ")");
}

void ProjectViewModel::addTruss(qint64 startNodeId, qint64 endNodeId, double area, double youngModulus) {
  Project& model = **project;
  const auto start = model.getNodeCoordinates(startNodeId);
  const auto end = model.getNodeCoordinates(endNodeId);
  if (!start || !end) {
    printLine("Error: Could not find coordinates for nodes " + std::to_string(startNodeId) + " or " +
              std::to_string(endNodeId) + " to add truss.");
    return;
  }
  if (!makeArraysFit()) return;
  const TrussElement truss(std::ssize(*model.trussElements), startNodeId, endNodeId, *start, *end, area, youngModulus,
                           /*isCompressionOnly=*/false, /*isNonLinear=*/true);
  model.trussElements.edit().push_back(truss);
  announceEdit();
  printLine("Added Truss: Nodes " + std::to_string(startNodeId) + ", " + std::to_string(endNodeId) + " with Area " +
            numberText(area) + ", E " + numberText(youngModulus));
}

void ProjectViewModel::addBeam(qint64 startNodeId, qint64 endNodeId, double area, double iy, double iz,
                               double youngModulus, double shearModulus) {
  Project& model = **project;
  const auto start = model.getNodeCoordinates(startNodeId);
  const auto end = model.getNodeCoordinates(endNodeId);
  if (!start || !end) {
    printLine("Error: Could not find coordinates for nodes to add beam.");
    return;
  }
  if (!makeArraysFit()) return;
  const BeamElement beam(std::ssize(*model.beamElements), startNodeId, endNodeId, *start, *end, area, iy, iz,
                         youngModulus, shearModulus, /*isNonLinear=*/false);
  model.beamElements.edit().push_back(beam);
  announceEdit();
  printLine("Added Beam: Nodes " + std::to_string(startNodeId) + ", " + std::to_string(endNodeId));
}

bool ProjectViewModel::saveProject(const std::optional<std::filesystem::path>& target) {
  const auto report = [this](const Failure& failure) {
    printLine("Failed to save project: " + failure.reason);
    setHasUnsavedChanges(true);
    emit saveFailed(QString::fromStdString(failure.reason));
    return false;
  };
  if (const auto failure = whyNotEncodable(**project)) return report(*failure);
  if (target) {
    currentFileUrl = target;
    emit currentFileChanged();
  }
  if (!currentFileUrl) {
    printLine("No save location specified. Use 'Save As...'");
    return false;
  }
  const auto failure = writeProject(**project, *currentFileUrl);
  // After a failure, too: the user has agreed to replace this file.
  currentFileStamp_ = FileStamp::read(*currentFileUrl);
  if (failure) return report(*failure);
  setFileThatHoldsIt(currentFileUrl);
  setHasUnsavedChanges(false);
  setRemark({});
  printLine("Project saved successfully to " + currentFileUrl->filename().string());
  emit fileUsed();
  return true;
}

bool ProjectViewModel::saveProject(const QUrl& target) {
  return saveProject(toPath(target));
}

bool ProjectViewModel::loadProject(const std::optional<std::filesystem::path>& source) {
  return load(source, /*onlyIfDrawable=*/false);
}

bool ProjectViewModel::openProject(const std::optional<std::filesystem::path>& source) {
  return load(source, /*onlyIfDrawable=*/true);
}

bool ProjectViewModel::load(const std::optional<std::filesystem::path>& source, bool onlyIfDrawable) {
  if (!source) {
    printLine("No load file specified. Use 'Open...'");
    return false;
  }
  emit changesAtRisk();
  const auto stamp = FileStamp::read(*source);  // before reading, so that a change during it is noticed
  auto loaded = readProject(*source);
  if (!loaded) {
    printLine("Failed to load project: " + loaded.failure().reason);
    if ((*project)->nodeCount() > 0) previous_ = {*project, origin(), hasUnsavedChanges_, results_};
    replace(std::make_shared<Project>(), {}, false);
    emit openFailed(fileName(*source), QString::fromStdString(loaded.failure().reason));
    return false;
  }
  if (const auto danger = whyNotDrawable(**loaded); danger && onlyIfDrawable) {
    heldBack_ = *source;
    emit openHeldBack(fileName(*source), QString::fromStdString(danger->reason));
    return false;
  }
  replace(std::move(*loaded), {source, stamp}, false,
          "Project loaded successfully from " + source->filename().string());
  emit fileUsed();
  return true;
}

void ProjectViewModel::replace(std::shared_ptr<Project> next, const Origin& origin, bool unsaved,
                               const std::string& line) {
  const std::int64_t nodes = next->nodeCount();
  project.edit() = std::move(next);
  numberOfNodes.edit() = nodes;
  currentFileUrl = origin.file;
  currentFileStamp_ = origin.stamp;
  setMarks({});
  setRemark({});
  setResults(Results::none);
  announce();
  if (!line.empty()) printLine(line);
  emit currentFileChanged();
  setFileThatHoldsIt(origin.file);
  setHasUnsavedChanges(unsaved);
  emit projectLoaded();
}

void ProjectViewModel::restore(std::shared_ptr<Project> structure, const Origin& origin) {
  replace(std::move(structure), origin, true);
  emit structureEdited();
}

void ProjectViewModel::restorePrevious() {
  if (!previous_) return;
  emit changesAtRisk();
  const Previous former = *std::exchange(previous_, std::nullopt);
  replace(former.project, former.origin, former.unsaved);
  setResults(former.results);
  if (former.unsaved) emit structureEdited();
}

ProjectViewModel::ChangeOnDisk ProjectViewModel::changeOnDisk() const {
  if (!currentFileUrl) return ChangeOnDisk::none;
  const auto now = FileStamp::read(*currentFileUrl);
  if (now == currentFileStamp_) return ChangeOnDisk::none;
  return now ? ChangeOnDisk::changed : ChangeOnDisk::removed;
}

bool ProjectViewModel::loadProject(const QUrl& source) {
  return loadProject(toPath(source));
}

bool ProjectViewModel::openProject(const QUrl& source) {
  return openProject(toPath(source));
}

void ProjectViewModel::newProject() {
  setAppMode(AppMode::normal);
  setSelectedNodesForTruss({});
  emit changesAtRisk();
  replace(std::make_shared<Project>(), {}, false);
}

NodeContents ProjectViewModel::nodeContents(qint64 nodeID) const {
  const Project& model = **project;
  const Vector3 X = model.getNodeCoordinates(nodeID).value_or(Vector3{});
  const Vector3 U = model.getNodeDisplacement(nodeID).value_or(Vector3{});
  const Vector3 F = model.getNodeForce(nodeID).value_or(Vector3{});
  const auto restraints = model.getNodeRestraints(nodeID).value_or(Project::Restraints{});
  return {X.x, X.y, X.z, U.x, U.y, U.z, F.x, F.y, F.z, restraints.x, restraints.y, restraints.z};
}

void ProjectViewModel::setLoadAndRestraint(qint64 nodeID, double x, double y, double z, bool rx, bool ry, bool rz) {
  setRemark({});
  if (nodeID < (*project)->nodeCount() && !makeArraysFit()) return;
  (*project)->setLoadAndRestraint(nodeID, {x, y, z}, rx, ry, rz);
  announceEdit();
}

TrussContents ProjectViewModel::trussContents(qint64 elementID) const {
  const auto& trusses = *(*project)->trussElements;
  const auto truss = std::ranges::find(trusses, elementID, &TrussElement::id);
  if (truss == trusses.end()) return {};
  return {true, truss->area, truss->isNonLinear};
}

void ProjectViewModel::setNonLinear(qint64 position, bool isNonLinear) {
  at((*project)->trussElements.edit(), position, "trussElements").isNonLinear = isNonLinear;
  emit projectChanged();
  finishEdit();
}

void ProjectViewModel::makeLinear(const std::vector<std::int64_t>& positions) {
  auto& trusses = (*project)->trussElements.edit();
  for (const std::int64_t position : positions) at(trusses, position, "trussElements").isNonLinear = false;
  announceEdit();
}

Result<ImportOutcome> ProjectViewModel::importFiles(const std::vector<std::filesystem::path>& files,
                                                    const ImportSettings& settings) {
  setRemark({});
  auto outcome = gavrel::importFiles(**project, files, settings);
  if (!outcome) {
    printLine("Failed to import: " + outcome.failure().reason);
    return outcome;
  }
  numberOfNodes.edit() = (*project)->nodeCount();
  announceEdit();
  printLine("Imported " + std::to_string(outcome->nodes) + " nodes, " + std::to_string(outcome->trusses) + " bars, " +
            std::to_string(outcome->beams) + " beams");
  return outcome;
}

void ProjectViewModel::setMarks(Marks value) {
  marks_ = std::move(value);
  emit marksChanged();
}

bool ProjectViewModel::hasMarks() const {
  return !marks_.nodes.empty() || !marks_.trusses.empty() || !marks_.beams.empty();
}

void ProjectViewModel::clearMarks() {
  if (hasMarks()) setMarks({});
}

void ProjectViewModel::setProject(std::shared_ptr<Project> value) {
  set(project, std::move(value), &ProjectViewModel::projectChanged);
}

void ProjectViewModel::setAppMode(AppMode value) {
  set(appMode, value, &ProjectViewModel::appModeChanged);
}

void ProjectViewModel::setSelectedNodesForTruss(std::vector<std::int64_t> value) {
  const bool changes = value != *selectedNodesForTruss;
  selectedNodesForTruss.edit() = std::move(value);
  if (changes) emit selectedNodesForTrussChanged();
}

void ProjectViewModel::setLastUsedStartX(const QString& value) {
  set(lastUsedStartX, value, &ProjectViewModel::lastUsedChanged);
}

void ProjectViewModel::setLastUsedStartY(const QString& value) {
  set(lastUsedStartY, value, &ProjectViewModel::lastUsedChanged);
}

void ProjectViewModel::setLastUsedStartZ(const QString& value) {
  set(lastUsedStartZ, value, &ProjectViewModel::lastUsedChanged);
}

void ProjectViewModel::setLastUsedConnectToLast(bool value) {
  set(lastUsedConnectToLast, value, &ProjectViewModel::lastUsedChanged);
}

void ProjectViewModel::setIsStrainVisualizationActive(bool value) {
  set(isStrainVisualizationActive, value, &ProjectViewModel::isStrainVisualizationActiveChanged);
}

template <class Value>
void ProjectViewModel::set(Published<Value>& property, Value value, void (ProjectViewModel::*changed)()) {
  property.edit() = std::move(value);
  emit(this->*changed)();
}

/// Without a new remark the old one stays: of several elements added in one go, often only the first causes a remark.
bool ProjectViewModel::makeArraysFit() {
  const auto filled = fitArrays(**project);
  std::string text;
  if (!filled) text = "Nothing was changed: " + filled.failure().reason + ".";
  if (filled)
    for (const std::string& line : *filled) text += (text.empty() ? "" : " ") + line;
  if (text.empty()) return true;
  printLine(text);
  setRemark(QString::fromStdString(text));
  return static_cast<bool>(filled);
}

void ProjectViewModel::setRemark(const QString& value) {
  if (std::exchange(remark_, value) != value) emit remarkChanged();
}

void ProjectViewModel::announce() {
  objectWillChange.announce();
  emit projectChanged();
}

void ProjectViewModel::announceEdit() {
  announce();
  finishEdit();
}

void ProjectViewModel::finishEdit() {
  if (hasResults()) setResults(Results::outdated);
  emit structureEdited();
  setHasUnsavedChanges(true);
}

void ProjectViewModel::setResults(Results value) {
  if (std::exchange(results_, value) != value) emit resultsChanged();
}

void ProjectViewModel::setHasUnsavedChanges(bool value) {
  if (std::exchange(hasUnsavedChanges_, value) != value) emit unsavedChangesChanged();
}

void ProjectViewModel::setFileThatHoldsIt(const std::optional<std::filesystem::path>& file) {
  fileThatHoldsIt_ = file;
  emit currentFileHoldsItChanged();
}

QVariantList ProjectViewModel::selectedNodes() const {
  QVariantList list;
  for (const std::int64_t node : *selectedNodesForTruss) list.append(QVariant::fromValue<qint64>(node));
  return list;
}

void ProjectViewModel::setSelectedNodes(const QVariantList& value) {
  std::vector<std::int64_t> nodes;
  for (const QVariant& node : value) nodes.push_back(node.toLongLong());
  setSelectedNodesForTruss(std::move(nodes));
}

qint64 ProjectViewModel::numberOfElements() const {
  const Project& model = **project;
  return std::ssize(*model.trussElements) + std::ssize(*model.beamElements);
}

QString ProjectViewModel::projectName() const {
  return QString::fromStdString(*(*project)->name);
}

QString ProjectViewModel::currentFileName() const {
  return currentFileUrl ? fileName(*currentFileUrl) : QString();
}

QUrl ProjectViewModel::currentFolder() const {
  if (currentFileUrl) {
    const auto folder = std::filesystem::absolute(*currentFileUrl).parent_path();
    return QUrl::fromLocalFile(QString::fromStdString(folder.string()));
  }
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return QUrl::fromLocalFile(QDir(documents).exists() ? documents : QDir::homePath());
}

}  // namespace gavrel
