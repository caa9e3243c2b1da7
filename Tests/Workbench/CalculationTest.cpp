#include "Workbench/Calculation.h"

#include <gmock/gmock.h>

#include <QCloseEvent>
#include <QCoreApplication>
#include <QKeyEvent>

#include "Tests/Structures.h"

using namespace gavrel;

namespace {

/// A bar along x of stiffness 1000 between a held node and one that is pulled, and its calculation.
class CalculationTest : public testing::Test {
 protected:
  CalculationTest() {
    auto project = std::make_shared<Project>();
    for (const double x : {0.0, 2.0}) project->addNode({x, 0, 0});
    addBar(*project, 0, 1, 2000);
    project->setLoadAndRestraint(0, {}, true, true, true);
    project->setLoadAndRestraint(1, {20, 0, 0}, false, true, true);
    model.restore(std::move(project), {});
    calculation.setProjectViewModel(&model);
    QObject::connect(&calculation, &Calculation::changed, [this] {
      const std::string outcome = calculation.outcome().toStdString();
      if (outcomes.empty() || outcomes.back() != outcome) outcomes.push_back(outcome);
    });
  }

  void run(void (Calculation::*how)() = &Calculation::run) {
    outcomes.clear();
    testing::internal::CaptureStdout();
    (calculation.*how)();
    testing::internal::GetCapturedStdout();
  }

  ProjectViewModel model;
  Calculation calculation;
  std::vector<std::string> outcomes;  // one after the other
};

TEST_F(CalculationTest, TellsOfItsStepsAndHowItEnded) {
  run();
  EXPECT_THAT(outcomes,
              testing::ElementsAre("Solving…", "Solving: step 1, residual 1.0e+00", "Solving: step 2, residual 0.0e+00",
                                   "Converged in 2 steps, residual 0.0e+00"));
  EXPECT_TRUE(calculation.converged());
  EXPECT_EQ(calculation.residuals(), (QList<double>{1, 0}));
  (*model.project)->F_I.edit()[7] = 5;  // on a support, so that it never converges
  run(&Calculation::runAnyway);
  EXPECT_EQ(outcomes.back(), "Not converged after 50 steps, residual 2.4e-01");
  EXPECT_FALSE(calculation.converged());
  model.addNode(9, 9, 9, false);
  EXPECT_EQ(calculation.outcome(), "") << "the structure is another one now";
  EXPECT_EQ(calculation.residuals(), QList<double>());
}

/// What a user does meanwhile is meant for what was shown before.
TEST_F(CalculationTest, DropsInputAndRunsOnceWhileItSolves) {
  struct Receiver : QObject {
    bool event(QEvent* event) override {
      got.push_back(event->type());
      return true;
    }
    std::vector<QEvent::Type> got;
  } receiver;
  const auto send = [&receiver] {
    QKeyEvent key(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
    QCloseEvent close;
    QEvent other(QEvent::User);
    for (QEvent* event : {static_cast<QEvent*>(&key), static_cast<QEvent*>(&close), &other})
      QCoreApplication::sendEvent(&receiver, event);
    return close.isAccepted();
  };
  bool isFirst = true;
  QObject::connect(&calculation, &Calculation::changed, [&] {
    if (!calculation.running() || !std::exchange(isFirst, false)) return;
    EXPECT_FALSE(send()) << "the window stays open";
    calculation.run();
    calculation.answer(true);
  });
  run();
  EXPECT_THAT(receiver.got, testing::ElementsAre(QEvent::User));
  EXPECT_EQ(calculation.residuals().size(), 2);
  EXPECT_TRUE(send());
  EXPECT_EQ(receiver.got.size(), 4U);
}

TEST_F(CalculationTest, EndsTheProcessOnlyIfThatIsTheAnswer) {
  model.addNode(9, 9, 9, false);
  run();
  EXPECT_EQ(calculation.reasonToEnd(), "") << "nothing was solved";
  run(&Calculation::runAnyway);
  EXPECT_THAT(calculation.reasonToEnd().toStdString(), testing::HasSubstr("Nothing joins node 2"));
  EXPECT_THAT(outcomes, testing::ElementsAre("Solving…", ""));
  EXPECT_DEATH(calculation.answer(true), "Fatal error: ");
  calculation.answer(false);
  EXPECT_EQ(calculation.reasonToEnd(), "");
  run(&Calculation::runAnyway);
  model.newProject();
  EXPECT_EQ(calculation.reasonToEnd(), "") << "it was of another project";
}

}  // namespace
