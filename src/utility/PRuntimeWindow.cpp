#include "PRuntimeWindow.h"

#include "Operation.h"
#include "PRuntimeString.h"

#include <QApplication>
#include <QDesktopWidget>
#include <QLabel>
#include <QPushButton>
#include <QRect>
#include <QWidget>

namespace {

// The default screen as QDesktopWidget numbers it (-1). Its origin is deliberately not used.
QRect defaultScreen() {
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return QApplication::desktop()->screenGeometry(-1);
    QT_WARNING_POP
}

} // namespace

PRuntimeWindow::PRuntimeWindow() noexcept = default;

PRuntimeWindow::~PRuntimeWindow() = default;

void PRuntimeWindow::activate(QWidget* widget) const {
    pallix::operation([&] {
        if (widget == nullptr) {
            return;
        }
        widget->show();
        widget->raise();
        widget->activateWindow();
    });
}

QWidget* PRuntimeWindow::rootParent(QWidget* widget) const {
    return pallix::operation([&]() -> QWidget* {
        if (widget == nullptr) {
            return nullptr;
        }
        while (widget->parentWidget() != nullptr) {
            widget = widget->parentWidget();
        }
        return widget;
    });
}

// Integer division in C++ truncates towards zero, which is the halving wanted here for a
// widget larger than what it is centred on (-5 gives -2).
int PRuntimeWindow::relativeX(QWidget* widget) const {
    return pallix::operation([&] {
        if (widget == nullptr) {
            return 0;
        }
        QWidget* top = rootParent(widget->parentWidget());
        if (top != nullptr) {
            return top->x() + (top->width() - widget->width()) / 2;
        }
        return (defaultScreen().width() - widget->width()) / 2;
    });
}

int PRuntimeWindow::relativeY(QWidget* widget) const {
    return pallix::operation([&] {
        if (widget == nullptr) {
            return 0;
        }
        QWidget* top = rootParent(widget->parentWidget());
        if (top != nullptr) {
            return top->y() + (top->height() - widget->height()) / 2;
        }
        return (defaultScreen().height() - widget->height()) / 2;
    });
}

void PRuntimeWindow::setToolTip(QWidget* widget, const NString& text) {
    pallix::operation([&] { setToolTip(widget, _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(text)); });
}

void PRuntimeWindow::setToolTip(QWidget* widget, const QString& text) {
    pallix::operation([&] { widget->setToolTip(text); });
}

NString PRuntimeWindow::toolTip(const QWidget* widget) const {
    return pallix::operation(
        [&] { return _80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(widget->toolTip()); });
}

void PRuntimeWindow::setWindowTitle(QWidget* widget, const NString& text) {
    pallix::operation([&] { setWindowTitle(widget, _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(text)); });
}

void PRuntimeWindow::setWindowTitle(QWidget* widget, const QString& text) {
    pallix::operation([&] { widget->setWindowTitle(text); });
}

NString PRuntimeWindow::windowTitle(const QWidget* widget) const {
    return pallix::operation(
        [&] { return _80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(widget->windowTitle()); });
}

void PRuntimeWindow::setText(QLabel* label, const NString& text) {
    pallix::operation([&] { setText(label, _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(text)); });
}

void PRuntimeWindow::setText(QLabel* label, const QString& text) {
    pallix::operation([&] { label->setText(text); });
}

NString PRuntimeWindow::text(const QLabel* label) const {
    return pallix::operation([&] { return _80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(label->text()); });
}

void PRuntimeWindow::setText(QPushButton* button, const NString& text) {
    pallix::operation([&] { setText(button, _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(text)); });
}

void PRuntimeWindow::setText(QPushButton* button, const QString& text) {
    pallix::operation([&] { static_cast<QAbstractButton*>(button)->setText(text); });
}

NString PRuntimeWindow::text(const QPushButton* button) const {
    return pallix::operation([&] {
        return _80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(
            static_cast<const QAbstractButton*>(button)->text());
    });
}
