#include "PRuntimeWindow.h"

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

void PRuntimeWindow::activate(QWidget* widget) const noexcept {
    if (widget == nullptr) {
        return;
    }
    try {
        widget->show();
        widget->raise();
        widget->activateWindow();
    } catch (...) {
    }
}

QWidget* PRuntimeWindow::rootParent(QWidget* widget) const noexcept {
    if (widget == nullptr) {
        return nullptr;
    }
    while (widget->parentWidget() != nullptr) {
        widget = widget->parentWidget();
    }
    return widget;
}

// Integer division in C++ truncates towards zero, which is the halving wanted here for a
// widget larger than what it is centred on (-5 gives -2).
int PRuntimeWindow::relativeX(QWidget* widget) const noexcept {
    if (widget == nullptr) {
        return 0;
    }
    try {
        QWidget* top = rootParent(widget->parentWidget());
        if (top != nullptr) {
            return top->x() + (top->width() - widget->width()) / 2;
        }
        return (defaultScreen().width() - widget->width()) / 2;
    } catch (...) {
        return 0;
    }
}

int PRuntimeWindow::relativeY(QWidget* widget) const noexcept {
    if (widget == nullptr) {
        return 0;
    }
    try {
        QWidget* top = rootParent(widget->parentWidget());
        if (top != nullptr) {
            return top->y() + (top->height() - widget->height()) / 2;
        }
        return (defaultScreen().height() - widget->height()) / 2;
    } catch (...) {
        return 0;
    }
}

void PRuntimeWindow::setToolTip(QWidget* widget, const NString& text) noexcept {
    setToolTip(widget, _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(text));
}

void PRuntimeWindow::setToolTip(QWidget* widget, const QString& text) noexcept {
    try {
        widget->setToolTip(text);
    } catch (...) {
    }
}

NString PRuntimeWindow::toolTip(const QWidget* widget) const noexcept {
    try {
        return _80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(widget->toolTip());
    } catch (...) {
        return NString();
    }
}

void PRuntimeWindow::setWindowTitle(QWidget* widget, const NString& text) noexcept {
    setWindowTitle(widget, _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(text));
}

void PRuntimeWindow::setWindowTitle(QWidget* widget, const QString& text) noexcept {
    try {
        widget->setWindowTitle(text);
    } catch (...) {
    }
}

NString PRuntimeWindow::windowTitle(const QWidget* widget) const noexcept {
    try {
        return _80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(widget->windowTitle());
    } catch (...) {
        return NString();
    }
}

void PRuntimeWindow::setText(QLabel* label, const NString& text) noexcept {
    setText(label, _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(text));
}

void PRuntimeWindow::setText(QLabel* label, const QString& text) noexcept {
    try {
        label->setText(text);
    } catch (...) {
    }
}

NString PRuntimeWindow::text(const QLabel* label) const noexcept {
    try {
        return _80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(label->text());
    } catch (...) {
        return NString();
    }
}

void PRuntimeWindow::setText(QPushButton* button, const NString& text) noexcept {
    setText(button, _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(text));
}

void PRuntimeWindow::setText(QPushButton* button, const QString& text) noexcept {
    try {
        static_cast<QAbstractButton*>(button)->setText(text);
    } catch (...) {
    }
}

NString PRuntimeWindow::text(const QPushButton* button) const noexcept {
    try {
        return _80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(
            static_cast<const QAbstractButton*>(button)->text());
    } catch (...) {
        return NString();
    }
}
