#include "PRuntimeAnimation.h"

#include "ConfigurationFormat.h"
#include "Operation.h"
#include "PRuntime.h"
#include "PRuntimeConfig.h"

#include <QAbstractAnimation>
#include <QObject>
#include <QPropertyAnimation>

#include <new>

namespace {

// Without a configuration to ask, motion is left out: the caller still sees the final state.
bool animationsOn() noexcept {
    PRuntime* root = PRuntime::getInstance();
    if (root == nullptr) {
        return false;
    }
    PRuntimeConfig* config = root->config();
    if (config == nullptr) {
        return false;
    }
    return config->getSettingStatus(pallix::format::configuration::kSettingWindowAnimation);
}

} // namespace

PRuntimeAnimation::PRuntimeAnimation() noexcept = default;

PRuntimeAnimation::~PRuntimeAnimation() = default;

void PRuntimeAnimation::run(QObject* target, const QByteArray& property, int duration,
                            const QVariant& start, const QVariant& end,
                            const QEasingCurve& easing) {
    pallix::operation([&] {
        // This class's own create, not an override: run's behaviour does not change with a
        // subclass that prepares animations differently.
        QPropertyAnimation* animation =
            PRuntimeAnimation::create(target, property, duration, start, end, easing);
        if (animation == nullptr) {
            return;
        }
        animation->start(QAbstractAnimation::KeepWhenStopped);
    });
}

QPropertyAnimation* PRuntimeAnimation::create(QObject* target, const QByteArray& property,
                                              int duration, const QVariant& start,
                                              const QVariant& end, const QEasingCurve& easing) {
    return pallix::operation([&]() -> QPropertyAnimation* {
        if (target == nullptr) {
            return nullptr;
        }
        if (!animationsOn()) {
            target->setProperty(property.constData(), end);
            return nullptr;
        }
        auto* animation = new (std::nothrow) QPropertyAnimation(target, property, nullptr);
        if (animation == nullptr) {
            return nullptr;
        }
        // Owned by itself: gone with the next turn of the event loop after it finishes.
        QObject::connect(animation, SIGNAL(finished()), animation, SLOT(deleteLater()));
        animation->setDuration(duration);
        animation->setStartValue(start);
        animation->setEndValue(end);
        animation->setEasingCurve(easing);
        return animation;
    });
}
