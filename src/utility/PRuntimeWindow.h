#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

#include <QString>

class QLabel;
class QPushButton;
class QWidget;

// Brings windows forward, centres them over their top-level parent or the screen, and sets and
// reads widget texts with either string type. It holds no state; use it from the interface
// thread. Only activate, rootParent, relativeX and relativeY accept a null widget.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeWindow {
public:
    PRuntimeWindow() noexcept;
    virtual ~PRuntimeWindow();

    // show(), raise(), activateWindow().
    virtual void activate(QWidget* widget) const;
    // The top-most ancestor (the widget itself when it has no parent); null for null.
    virtual QWidget* rootParent(QWidget* widget) const;
    // The position at which the widget is centred over the top-level ancestor of its parent,
    // or over the default screen when it has no parent (the screen's origin is not added).
    // Halving drops the fraction towards zero.
    virtual int relativeX(QWidget* widget) const;
    virtual int relativeY(QWidget* widget) const;

    virtual void setToolTip(QWidget* widget, const NString& text);
    virtual void setToolTip(QWidget* widget, const QString& text);
    virtual NString toolTip(const QWidget* widget) const;
    virtual void setWindowTitle(QWidget* widget, const NString& text);
    virtual void setWindowTitle(QWidget* widget, const QString& text);
    virtual NString windowTitle(const QWidget* widget) const;
    virtual void setText(QLabel* label, const NString& text);
    virtual void setText(QLabel* label, const QString& text);
    virtual NString text(const QLabel* label) const;
    virtual void setText(QPushButton* button, const NString& text);
    virtual void setText(QPushButton* button, const QString& text);
    virtual NString text(const QPushButton* button) const;

    PRuntimeWindow(const PRuntimeWindow&) = delete;
    PRuntimeWindow& operator=(const PRuntimeWindow&) = delete;
};
