#include "PreviewContent/Coordinator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace gavrel;

namespace {

using Number = std::optional<std::int64_t>;

/// A coordinator whose selections start as 77, so that an unchanged selection differs from a cleared one.
struct Clicks {
  Number node = 77, element = 77;
  std::vector<Number> elements;  // every value that the element selection took
  AppMode mode = AppMode::normal;
  std::vector<std::int64_t> collected;
  double magnification = 1;
  bool strain = false;
  SceneKitView::Coordinator coordinator{Scene{},
                                        nullptr,
                                        Binding<Number>::to(node),
                                        {[this] { return element; },
                                         [this](Number value) {
                                           element = value;
                                           elements.push_back(value);
                                         }},
                                        Binding<double>::to(magnification),
                                        Binding<AppMode>::to(mode),
                                        Binding<std::vector<std::int64_t>>::to(collected),
                                        Binding<bool>::to(strain)};

  void on(std::optional<std::string> name) {
    SceneNode hit, behind;
    hit.name = std::move(name);
    behind.name = "5";
    coordinator.handleClick({{&hit, 1.0}, {&behind, 2.0}});
  }
};

TEST(Coordinator, SelectsByTheNameThatWasHit) {
  const Number none, kept = 77;
  const struct {
    std::optional<std::string> name;
    Number node, element;  // in normal mode
    Number elementWhileAdding;
  } cases[] = {
      {"3", 3, 3, 3},
      {"14", 14, 4, 4},
      {"10", 10, 0, 0},
      {"element_27", kept, 27, 27},
      {"element_-5", kept, -5, -5},
      {"element_element_8", kept, 8, 8},
      {"element_+4", kept, 4, 4},
      {"element_", kept, kept, kept},
      {"element_ 6", kept, 6, 6},  // only the last digit counts
      {"element_1x", kept, kept, kept},
      {"99999999999999999999", kept, 9, 9},
      {"", kept, kept, kept},
      {"-2", -2, 2, 2},
      {"+-2", kept, 2, 2},
      {"camera", kept, kept, kept},
      {std::nullopt, none, none, none},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name.value_or("no name"));
    Clicks normal;
    normal.on(c.name);
    EXPECT_EQ(normal.node, c.node);
    EXPECT_EQ(normal.element, c.element);
    EXPECT_THAT(normal.collected, testing::IsEmpty());
    for (const AppMode mode : {AppMode::addingTruss, AppMode::addingBeam}) {
      Clicks adding;
      adding.mode = mode;
      adding.on(c.name);
      EXPECT_EQ(adding.node, 77) << "a click while adding never touches the selected node";
      EXPECT_EQ(adding.element, c.elementWhileAdding);
      EXPECT_EQ(adding.collected.size(), c.node.value_or(77) == 77 ? 0U : 1U);
    }
  }
}

TEST(Coordinator, PassesThroughTheLastDigit) {
  Clicks clicks;
  clicks.on("element_27");
  EXPECT_THAT(clicks.elements, testing::ElementsAre(7, 27));
}

TEST(Coordinator, CollectsEachNodeOnceInTheOrderOfTheClicks) {
  Clicks clicks;
  clicks.mode = AppMode::addingTruss;
  for (const auto* node : {"4", "1", "4", "7"}) clicks.on(node);
  EXPECT_THAT(clicks.collected, testing::ElementsAre(4, 1, 7));
}

TEST(Coordinator, AClickBesideEverythingClearsTheSelection) {
  Clicks clicks;
  clicks.collected = {1};
  clicks.mode = AppMode::addingBeam;
  clicks.coordinator.handleClick({});
  EXPECT_EQ(clicks.element, std::nullopt);
  EXPECT_EQ(clicks.node, 77);
  EXPECT_THAT(clicks.collected, testing::ElementsAre(1));
  clicks.mode = AppMode::normal;
  clicks.coordinator.handleClick({});
  EXPECT_EQ(clicks.node, std::nullopt);
}

}  // namespace
