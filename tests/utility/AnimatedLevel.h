#pragma once

#include <QObject>

namespace pallix::test {

// A target with a double property that a linear animation reaches exactly only at its end, so
// that arriving there means the animation has finished.
class AnimatedLevel : public QObject {
    Q_OBJECT
    Q_PROPERTY(double level READ level WRITE setLevel)
public:
    double level() const { return m_level; }
    void setLevel(double level) { m_level = level; }

private:
    double m_level = -1.0;
};

} // namespace pallix::test
