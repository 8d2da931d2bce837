#include "VirtualSlot.h"

#include "PRuntime.h"
#include "PRuntimeWindow.h"

#include <QApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QWidget>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using pallix::test::virtualSlot;

namespace {

class WindowTest : public ::testing::Test {
protected:
    void TearDown() override { PRuntime::freeInstance(); }
    PRuntimeWindow window;
};

// Notes the show and activation events of the widget it watches, in order.
class EventLog : public QObject {
public:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() == QEvent::Show || event->type() == QEvent::WindowActivate) {
            events.push_back(event->type());
        }
        return false;
    }
    std::vector<QEvent::Type> events;
};

QString u(const char* utf8) {
    return QString::fromUtf8(utf8);
}

} // namespace

TEST(WindowSlots, VirtualOperationsKeepTheirSlots) {
    using W = PRuntimeWindow;
    EXPECT_EQ(virtualSlot(&W::activate), 3u);
    EXPECT_EQ(virtualSlot(&W::rootParent), 4u);
    EXPECT_EQ(virtualSlot(&W::relativeX), 5u);
    EXPECT_EQ(virtualSlot(&W::relativeY), 6u);
    EXPECT_EQ(virtualSlot(static_cast<void (W::*)(QWidget*, const NString&)>(&W::setToolTip)), 7u);
    EXPECT_EQ(virtualSlot(static_cast<void (W::*)(QWidget*, const QString&)>(&W::setToolTip)), 8u);
    EXPECT_EQ(virtualSlot(&W::toolTip), 9u);
    EXPECT_EQ(virtualSlot(static_cast<void (W::*)(QWidget*, const NString&)>(&W::setWindowTitle)),
              10u);
    EXPECT_EQ(virtualSlot(static_cast<void (W::*)(QWidget*, const QString&)>(&W::setWindowTitle)),
              11u);
    EXPECT_EQ(virtualSlot(&W::windowTitle), 12u);
    EXPECT_EQ(virtualSlot(static_cast<void (W::*)(QLabel*, const NString&)>(&W::setText)), 13u);
    EXPECT_EQ(virtualSlot(static_cast<void (W::*)(QLabel*, const QString&)>(&W::setText)), 14u);
    EXPECT_EQ(virtualSlot(static_cast<NString (W::*)(const QLabel*) const>(&W::text)), 15u);
    EXPECT_EQ(virtualSlot(static_cast<void (W::*)(QPushButton*, const NString&)>(&W::setText)),
              16u);
    EXPECT_EQ(virtualSlot(static_cast<void (W::*)(QPushButton*, const QString&)>(&W::setText)),
              17u);
    EXPECT_EQ(virtualSlot(static_cast<NString (W::*)(const QPushButton*) const>(&W::text)), 18u);
}

TEST_F(WindowTest, RootHandsOutTheComponent) {
    PRuntimeWindow* fromRoot = PRuntime::getInstance()->window();
    ASSERT_NE(fromRoot, nullptr);
    EXPECT_EQ(fromRoot->rootParent(nullptr), nullptr);
}

// --- activate and rootParent ------------------------------------------------------------------

TEST_F(WindowTest, ActivateShowsRaisesAndActivates) {
    QWidget other;
    other.resize(100, 100);
    other.show();
    QWidget widget;
    widget.resize(120, 80);
    EventLog log;
    widget.installEventFilter(&log);
    window.activate(&widget);
    EXPECT_TRUE(widget.isVisible());
    QApplication::processEvents();
    EXPECT_EQ(QApplication::activeWindow(), &widget);
    ASSERT_FALSE(log.events.empty());
    EXPECT_EQ(log.events.front(), QEvent::Show);
    EXPECT_NE(std::find(log.events.begin(), log.events.end(), QEvent::WindowActivate),
              log.events.end());
}

TEST_F(WindowTest, ActivateOfNullDoesNothing) {
    window.activate(nullptr);
    EXPECT_EQ(QApplication::activeWindow(), nullptr);
}

TEST_F(WindowTest, RootParentFollowsTheParentsUpwards) {
    QWidget top;
    QWidget* middle = new QWidget(&top);
    QWidget* leaf = new QWidget(middle);
    EXPECT_EQ(window.rootParent(leaf), &top);
    EXPECT_EQ(window.rootParent(middle), &top);
    EXPECT_EQ(window.rootParent(&top), &top);
    EXPECT_EQ(window.rootParent(nullptr), nullptr);
}

// --- relativeX and relativeY ------------------------------------------------------------------

TEST_F(WindowTest, RelativePositionOfNullIsZero) {
    EXPECT_EQ(window.relativeX(nullptr), 0);
    EXPECT_EQ(window.relativeY(nullptr), 0);
}

TEST_F(WindowTest, RelativePositionCentresOverALargerParent) {
    QWidget parent;
    parent.setGeometry(100, 50, 400, 300);
    QWidget child(&parent);
    child.resize(101, 51);
    // (400 - 101) / 2 = 149, (300 - 51) / 2 = 124: the fraction is dropped.
    EXPECT_EQ(window.relativeX(&child), 100 + 149);
    EXPECT_EQ(window.relativeY(&child), 50 + 124);
}

TEST_F(WindowTest, RelativePositionOfAWidgetLargerThanItsParentLiesLeftAndAbove) {
    QWidget parent;
    parent.setGeometry(100, 50, 100, 60);
    QWidget child(&parent);
    child.resize(105, 67);
    // (100 - 105) / 2 = -5 / 2 = -2 and (60 - 67) / 2 = -7 / 2 = -3: halving towards zero.
    EXPECT_EQ(window.relativeX(&child), 98);
    EXPECT_EQ(window.relativeY(&child), 47);
}

TEST_F(WindowTest, RelativePositionUsesTheTopLevelAncestorOfTheParent) {
    QWidget top;
    top.setGeometry(30, 40, 600, 400);
    QWidget* panel = new QWidget(&top);
    panel->setGeometry(10, 10, 200, 100);
    QWidget* child = new QWidget(panel);
    child->resize(100, 50);
    // The panel's own size and place do not matter, only the window's.
    EXPECT_EQ(window.relativeX(child), 30 + (600 - 100) / 2);
    EXPECT_EQ(window.relativeY(child), 40 + (400 - 50) / 2);
}

TEST_F(WindowTest, RelativePositionOfATopLevelWidgetCentresOnTheScreen) {
    QWidget widget;
    widget.setGeometry(700, 500, 301, 201);
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    ASSERT_GT(screen.width(), 0);
    // The screen's origin is not added, whatever it is.
    EXPECT_EQ(window.relativeX(&widget), (screen.width() - 301) / 2);
    EXPECT_EQ(window.relativeY(&widget), (screen.height() - 201) / 2);
}

TEST_F(WindowTest, RelativePositionOfATopLevelWidgetLargerThanTheScreen) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    QWidget widget;
    widget.resize(screen.width() + 301, screen.height() + 201);
    ASSERT_EQ(widget.width(), screen.width() + 301);
    EXPECT_EQ(window.relativeX(&widget), -150);
    EXPECT_EQ(window.relativeY(&widget), -100);
}

TEST_F(WindowTest, RelativePositionFindsTheTopThroughTheVirtualTable) {
    struct Spy : PRuntimeWindow {
        mutable int calls = 0;
        QWidget* rootParent(QWidget* widget) const override {
            ++calls;
            return PRuntimeWindow::rootParent(widget);
        }
    } spy;
    QWidget parent;
    parent.setGeometry(0, 0, 200, 100);
    QWidget child(&parent);
    child.resize(100, 50);
    EXPECT_EQ(spy.relativeX(&child), 50);
    EXPECT_EQ(spy.relativeY(&child), 25);
    EXPECT_EQ(spy.calls, 2);
}

// --- texts ----------------------------------------------------------------------------------

TEST_F(WindowTest, ToolTipBothWays) {
    QWidget widget;
    window.setToolTip(&widget, NString("备份 – backup"));
    EXPECT_EQ(widget.toolTip(), u("备份 – backup"));
    EXPECT_EQ(window.toolTip(&widget), NString("备份 – backup"));
    window.setToolTip(&widget, u("恢复"));
    EXPECT_EQ(window.toolTip(&widget), NString("恢复"));
}

TEST_F(WindowTest, WindowTitleBothWays) {
    QWidget widget;
    window.setWindowTitle(&widget, NString("设备管理"));
    EXPECT_EQ(widget.windowTitle(), u("设备管理"));
    EXPECT_EQ(window.windowTitle(&widget), NString("设备管理"));
    window.setWindowTitle(&widget, QStringLiteral("Devices"));
    EXPECT_EQ(window.windowTitle(&widget), NString("Devices"));
}

TEST_F(WindowTest, LabelTextBothWays) {
    QLabel label;
    window.setText(&label, NString("固件 ✓"));
    EXPECT_EQ(label.text(), u("固件 ✓"));
    EXPECT_EQ(window.text(&label), NString("固件 ✓"));
    window.setText(&label, QString());
    EXPECT_TRUE(window.text(&label).empty());
}

TEST_F(WindowTest, ButtonTextBothWays) {
    QPushButton button;
    window.setText(&button, NString("打开"));
    EXPECT_EQ(button.text(), u("打开"));
    EXPECT_EQ(window.text(&button), NString("打开"));
    window.setText(&button, QStringLiteral("&Open"));
    EXPECT_EQ(window.text(&button), NString("&Open"));
}

TEST_F(WindowTest, TextsWithAnEmbeddedNulEndThere) {
    QLabel label;
    label.setText(QStringLiteral("ab") + QChar(0) + QStringLiteral("cd"));
    EXPECT_EQ(window.text(&label), NString("ab"));
    window.setText(&label, NString("x\0y", 3));
    EXPECT_EQ(label.text(), QStringLiteral("x"));
}
