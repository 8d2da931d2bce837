#include "AnimatedLevel.h"
#include "TemporaryDirectory.h"
#include "VirtualSlot.h"

#include "NApplication.h"
#include "PRuntime.h"
#include "PRuntimeAnimation.h"
#include "PRuntimeConfig.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

#include <QCoreApplication>
#include <QEasingCurve>
#include <QEvent>
#include <QEventLoop>
#include <QPointer>
#include <QPropertyAnimation>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>

using pallix::test::AnimatedLevel;
using pallix::test::TemporaryDirectory;
using pallix::test::virtualSlot;

namespace {

// A configuration in a directory of its own with the "WindowAnimation" flag set as asked.
class AnimationTest : public ::testing::Test {
protected:
    void TearDown() override { PRuntime::freeInstance(); }

    void useOwnDirectory() { NApplication::setDirectoryConfig(m_directory.path().c_str()); }

    void setAnimations(bool on) {
        useOwnDirectory();
        PRuntimeConfig* config = PRuntime::getInstance()->config();
        ASSERT_NE(config, nullptr);
        config->setSettingStatus("WindowAnimation", on);
        ASSERT_EQ(config->getSettingStatus("WindowAnimation"), on)
            << "the configuration does not keep the \"WindowAnimation\" flag";
    }

    PRuntimeAnimation animation;

private:
    TemporaryDirectory m_directory{"pallix-animation"};
};

// Runs the event loop until the object is gone; the timer only keeps a broken build from
// hanging (it is not a measurement).
bool waitForDestruction(QObject* object) {
    QPointer<QObject> watched(object);
    if (watched.isNull()) {
        return true;
    }
    QEventLoop loop;
    QObject::connect(object, &QObject::destroyed, &loop, &QEventLoop::quit);
    QTimer::singleShot(20000, &loop, &QEventLoop::quit);
    loop.exec();
    return watched.isNull();
}

// Runs the event loop until the level has arrived at the value.
bool waitForLevel(const AnimatedLevel& target, double value) {
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (target.level() == value) {
            loop.quit();
        }
    });
    poll.start(5);
    QTimer::singleShot(20000, &loop, &QEventLoop::quit);
    loop.exec();
    return target.level() == value;
}

const QEasingCurve outCubic(QEasingCurve::OutCubic);

} // namespace

TEST(AnimationSlots, VirtualOperationsKeepTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeAnimation::run), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeAnimation::create), 4u);
}

TEST_F(AnimationTest, RootHandsOutTheComponent) {
    EXPECT_NE(PRuntime::getInstance()->animation(), nullptr);
}

TEST_F(AnimationTest, CreateWithoutTargetIsNull) {
    ASSERT_NO_FATAL_FAILURE(setAnimations(false));
    EXPECT_EQ(animation.create(nullptr, "pos", 100, QPoint(0, 0), QPoint(5, 5), outCubic), nullptr);
}

TEST_F(AnimationTest, RunWithoutTargetDoesNothing) {
    useOwnDirectory();
    animation.run(nullptr, "pos", 100, QPoint(0, 0), QPoint(5, 5), outCubic);
    // The target is looked at first: not even the setting was asked for, which would have
    // recorded the name in the configuration.
    EXPECT_EQ(_globalFrameworkConfig.status.count(NString("WindowAnimation")), 0u);
}

TEST_F(AnimationTest, AnimationsAreOffUntilTheSettingIsSwitchedOn) {
    // A configuration that never heard of the flag: its built-in default applies.
    useOwnDirectory();
    QWidget widget;
    widget.move(1, 2);
    EXPECT_EQ(animation.create(&widget, "pos", 500, QPoint(10, 10), QPoint(40, 30), outCubic),
              nullptr);
    EXPECT_EQ(widget.pos(), QPoint(40, 30));
    EXPECT_FALSE(PRuntime::getInstance()->config()->getSettingStatus("WindowAnimation"));
}

TEST_F(AnimationTest, CreateWithAnimationsOffSetsTheEndValueAndReturnsNull) {
    ASSERT_NO_FATAL_FAILURE(setAnimations(false));
    QWidget widget;
    widget.move(1, 2);
    QPropertyAnimation* created =
        animation.create(&widget, "pos", 500, QPoint(10, 10), QPoint(40, 30), outCubic);
    EXPECT_EQ(created, nullptr);
    EXPECT_EQ(widget.pos(), QPoint(40, 30));
}

TEST_F(AnimationTest, CreateWithAnimationsOffSetsADynamicProperty) {
    ASSERT_NO_FATAL_FAILURE(setAnimations(false));
    QObject target;
    EXPECT_EQ(animation.create(&target, "progress", 500, 0, 100, outCubic), nullptr);
    EXPECT_EQ(target.property("progress"), QVariant(100));
}

TEST_F(AnimationTest, RunWithAnimationsOffOnlySetsTheEndValue) {
    ASSERT_NO_FATAL_FAILURE(setAnimations(false));
    QWidget widget;
    animation.run(&widget, "pos", 50, QPoint(10, 10), QPoint(40, 30), outCubic);
    EXPECT_EQ(widget.pos(), QPoint(40, 30));
    // Nothing is left running that could move it again.
    widget.move(7, 7);
    QEventLoop loop;
    QTimer::singleShot(150, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_EQ(widget.pos(), QPoint(7, 7));
}

TEST_F(AnimationTest, CreateWithAnimationsOnPreparesAnUnstartedAnimation) {
    ASSERT_NO_FATAL_FAILURE(setAnimations(true));
    QWidget widget;
    widget.move(1, 2);
    QPropertyAnimation* created =
        animation.create(&widget, "pos", 250, QPoint(10, 10), QPoint(40, 30), outCubic);
    ASSERT_NE(created, nullptr);
    std::unique_ptr<QPropertyAnimation> owned(created); // never started: the caller owns it
    EXPECT_EQ(created->targetObject(), &widget);
    EXPECT_EQ(created->propertyName(), QByteArray("pos"));
    EXPECT_EQ(created->parent(), nullptr);
    EXPECT_EQ(created->duration(), 250);
    EXPECT_EQ(created->startValue(), QVariant(QPoint(10, 10)));
    EXPECT_EQ(created->endValue(), QVariant(QPoint(40, 30)));
    EXPECT_EQ(created->easingCurve(), outCubic);
    EXPECT_EQ(created->state(), QAbstractAnimation::Stopped);
    // The property is left for the animation to change.
    EXPECT_EQ(widget.pos(), QPoint(1, 2));
}

TEST_F(AnimationTest, CreatedAnimationDeletesItselfOnceFinished) {
    ASSERT_NO_FATAL_FAILURE(setAnimations(true));
    QWidget widget;
    QPropertyAnimation* created =
        animation.create(&widget, "pos", 30, QPoint(0, 0), QPoint(12, 34), outCubic);
    ASSERT_NE(created, nullptr);
    created->start(QAbstractAnimation::KeepWhenStopped);
    EXPECT_TRUE(waitForDestruction(created));
    EXPECT_EQ(widget.pos(), QPoint(12, 34));
}

TEST_F(AnimationTest, RunWithAnimationsOnMovesFromStartToEnd) {
    ASSERT_NO_FATAL_FAILURE(setAnimations(true));
    AnimatedLevel target;
    animation.run(&target, "level", 60, 0.25, 1.0, QEasingCurve(QEasingCurve::Linear));
    // Started at once: the property holds the start value, not yet the end.
    EXPECT_EQ(target.level(), 0.25);
    // Linear from 0.25, the level is exactly 1.0 only once the animation has finished.
    EXPECT_TRUE(waitForLevel(target, 1.0));
    // Finishing asked for the animation's deletion; let it happen (under LeakSanitizer an
    // animation that does not delete itself shows up as a leak).
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(AnimationTest, RunUsesThisClassesOwnCreate) {
    struct Spy : PRuntimeAnimation {
        int calls = 0;
        QPropertyAnimation* create(QObject* /*target*/, const QByteArray& /*property*/,
                                   int /*duration*/, const QVariant& /*start*/,
                                   const QVariant& /*end*/,
                                   const QEasingCurve& /*easing*/) override {
            ++calls;
            return nullptr;
        }
    } spy;
    ASSERT_NO_FATAL_FAILURE(setAnimations(false));
    QWidget widget;
    spy.run(&widget, "pos", 50, QPoint(10, 10), QPoint(40, 30), outCubic);
    EXPECT_EQ(spy.calls, 0);
    EXPECT_EQ(widget.pos(), QPoint(40, 30));
}
