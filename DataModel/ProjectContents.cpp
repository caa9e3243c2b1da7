#include "DataModel/ProjectContents.h"

#include <oneapi/tbb/parallel_pipeline.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <array>
#include <utility>

#include "Platform/JsonReader.h"

namespace gavrel {

namespace {

template <class Record, std::size_t i>
void readField(JsonValue json, Record& record) {
  readJson(json, record.*std::get<i>(Record::fields).member);
}

template <class Record>
constexpr auto listMembers() {
  return []<std::size_t... i>(std::index_sequence<i...>) {
    return std::array{JsonMember<Record>{std::get<i>(Record::fields).key, &readField<Record, i>}...};
  }
  (std::make_index_sequence<std::tuple_size_v<decltype(Record::fields)>>());
}

template <class Record>
void readElements(JsonValue json, std::vector<Record>& elements) {
  static constexpr auto members = listMembers<Record>();
  readJsonItems(json, [&elements](JsonValue item) { readJsonObject(item, elements.emplace_back(), members); });
}

constexpr std::array contentMembers{
    JsonMember<ProjectContents>{"name", [](JsonValue json, ProjectContents& to) { readJson(json, to.name); }},
    JsonMember<ProjectContents>{"trussElements",
                                [](JsonValue json, ProjectContents& to) { readElements(json, to.trussElements); }},
    JsonMember<ProjectContents>{"beamElements",
                                [](JsonValue json, ProjectContents& to) {
                                  const bool isNull = jsonResult(json.type()) == simdjson::ondemand::json_type::null;
                                  if (!isNull || !jsonResult(json.is_null())) readElements(json, to.beamElements);
                                },
                                false},
    JsonMember<ProjectContents>{"X_I", [](JsonValue json, ProjectContents& to) { readJson(json, to.X_I); }},
    JsonMember<ProjectContents>{"F_I", [](JsonValue json, ProjectContents& to) { readJson(json, to.F_I); }},
    JsonMember<ProjectContents>{"D_I", [](JsonValue json, ProjectContents& to) { readJson(json, to.D_I); }}};

/// The keys of the arrays.
constexpr std::array<std::string_view, contentMembers.size() - 1> arrayKeys = [] {
  std::array<std::string_view, contentMembers.size() - 1> keys;
  for (std::size_t i = 0; i < keys.size(); ++i) keys[i] = contentMembers[i + 1].key;
  return keys;
}();

/// Calls `visit(array)` for each member that is one.
template <class Visit>
void forEachArray(Visit&& visit) {
  visit(&ProjectContents::trussElements);
  visit(&ProjectContents::beamElements);
  visit(&ProjectContents::X_I);
  visit(&ProjectContents::F_I);
  visit(&ProjectContents::D_I);
}

/// Some items of one of the arrays.
struct Piece {
  std::size_t key = 0;
  std::string text;
  ProjectContents items;
  JsonParser parser;

  void read() {
    std::size_t count = 0;
    forEachArray([this](auto array) { (items.*array).clear(); });
    parser.read(text, 0, [this](JsonValue root) { contentMembers[key + 1].read(root, items); });
    forEachArray([this, &count](auto array) { count += (items.*array).size(); });
    if (count == 0) throw JsonError("a piece without items");
  }
};

/// The arrays, as far as they have been read.
class Growing {
 public:
  /// `textSize`: about that of the whole text.
  explicit Growing(std::uint64_t textSize) : textLeft_(textSize) {}

  void append(const Piece& piece) {
    const std::uint64_t size = piece.text.size();
    textLeft_ -= std::min(size, textLeft_);
    const double piecesLeft = static_cast<double>(textLeft_) / static_cast<double>(size);
    forEachArray([&](auto array) { append(contents_.*array, piece.items.*array, piecesLeft); });
  }

  /// Moves what has been read to `contents`, whose arrays are empty where they were cut out of the text.
  void moveTo(ProjectContents& contents) {
    forEachArray([&](auto array) {
      if (!(contents_.*array).empty()) contents.*array = std::move(contents_.*array);
    });
  }

 private:
  /// Makes room for the rest of the text, too, as if it were more of the same: memory that is not used costs nothing.
  template <class Array>
  static void append(Array& array, const Array& items, double piecesLeft) {
    const std::size_t size = array.size() + items.size();
    if (size > array.capacity())
      array.reserve(size + static_cast<std::size_t>(static_cast<double>(items.size()) * piecesLeft));
    array.insert(array.end(), items.begin(), items.end());
  }

  ProjectContents contents_;
  std::uint64_t textLeft_;
};

/// Reads the pieces in parallel and puts them together in their order.
void readPieces(JsonPieces& pieces, Growing& contents) {
  using Filter = oneapi::tbb::filter_mode;
  // As many pieces as the pipeline has under way at most; so the one that is to be used next has been put in place.
  std::vector<Piece> room(static_cast<std::size_t>(2 * oneapi::tbb::this_task_arena::max_concurrency()));
  std::size_t count = 0;
  const auto cut = [&](oneapi::tbb::flow_control& flow) -> Piece* {
    Piece& piece = room[count++ % room.size()];
    const auto key = pieces.next(piece.text);
    if (!key) {
      flow.stop();
      return nullptr;
    }
    piece.key = *key;
    return &piece;
  };
  const auto read = [](Piece* piece) {
    piece->read();
    return piece;
  };
  const auto append = [&contents](const Piece* piece) { contents.append(*piece); };
  oneapi::tbb::parallel_pipeline(room.size(),
                                 oneapi::tbb::make_filter<void, Piece*>(Filter::serial_in_order, cut) &
                                     oneapi::tbb::make_filter<Piece*, Piece*>(Filter::parallel, read) &
                                     oneapi::tbb::make_filter<Piece*, void>(Filter::serial_in_order, append));
}

}  // namespace

ProjectContents readContents(std::string json) {
  ProjectContents contents;
  JsonDocument(std::move(json)).read([&contents](JsonValue root) { readJsonObject(root, contents, contentMembers); });
  return contents;
}

std::optional<ProjectContents> readContentsInPieces(const JsonPieces::Source& source, std::uint64_t size,
                                                    std::size_t pieceSize) try {
  JsonPieces pieces(source, arrayKeys, pieceSize);
  Growing arrays(size);
  readPieces(pieces, arrays);
  ProjectContents contents = readContents(std::move(pieces.outer()));
  arrays.moveTo(contents);
  return contents;
} catch (const JsonError&) {
  return std::nullopt;
}

}  // namespace gavrel
