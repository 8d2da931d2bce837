#pragma once

#include <QDesktopServices>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QVector>

namespace pallix::test {

// Stands in for the desktop: registered as the handler of some URL schemes, it records every
// address that QDesktopServices::openUrl is asked to open instead of launching anything.
class UrlRecorder : public QObject {
    Q_OBJECT
public:
    explicit UrlRecorder(std::initializer_list<const char*> schemes) {
        for (const char* scheme : schemes) {
            m_schemes.push_back(QString::fromLatin1(scheme));
            QDesktopServices::setUrlHandler(m_schemes.back(), this, "open");
        }
    }
    ~UrlRecorder() override {
        for (const QString& scheme : m_schemes) {
            QDesktopServices::unsetUrlHandler(scheme);
        }
    }

    const QVector<QUrl>& opened() const { return m_opened; }

public Q_SLOTS:
    void open(const QUrl& url) { m_opened.push_back(url); }

private:
    QVector<QString> m_schemes;
    QVector<QUrl> m_opened;
};

} // namespace pallix::test
