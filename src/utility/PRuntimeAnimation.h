#pragma once

#include "PallixRuntimeExport.h"

#include <QByteArray>
#include <QEasingCurve>
#include <QVariant>

class QObject;
class QPropertyAnimation;

// Property animations that honour the user's "WindowAnimation" setting: with animations off
// the property jumps to its end value at once. It holds no state; use it from the interface
// thread.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeAnimation {
public:
    PRuntimeAnimation() noexcept;
    virtual ~PRuntimeAnimation();

    // Creates and starts the animation of create(); nothing more when create gives none.
    virtual void run(QObject* target, const QByteArray& property, int duration,
                     const QVariant& start, const QVariant& end, const QEasingCurve& easing);
    // With animations on: a prepared, not started animation without a Qt parent that deletes
    // itself once it has finished (a caller that never starts it owns it). With animations off:
    // sets the property to `end` and returns null. Null for a null target.
    virtual QPropertyAnimation* create(QObject* target, const QByteArray& property, int duration,
                                       const QVariant& start, const QVariant& end,
                                       const QEasingCurve& easing);

    PRuntimeAnimation(const PRuntimeAnimation&) = delete;
    PRuntimeAnimation& operator=(const PRuntimeAnimation&) = delete;
};
