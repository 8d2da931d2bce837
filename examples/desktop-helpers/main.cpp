// desktop_helpers_example: the library's desktop helpers in a real window.
//
//   desktop_helpers_example [--quit-after MS] [--animation on|off] [--screenshot FILE]
//
// A main window centred on the screen holds labels and buttons whose texts are set through
// both string types, a picture cut to the middle of a wide banner, and a marker that moves
// with an animation when the "WindowAnimation" setting allows it (and jumps otherwise). A small
// dialog is centred over the main window and brought forward. The buttons open the data
// folder and the product's web site with the desktop. With --quit-after, --screenshot writes a
// PNG picture of the main window with the dialog over it just before the program quits.

#include "NApplication.h"
#include "NString.h"
#include "PRuntime.h"
#include "PRuntimeAnimation.h"
#include "PRuntimeConfig.h"
#include "PRuntimePicture.h"
#include "PRuntimeShell.h"
#include "PRuntimeString.h"
#include "PRuntimeWindow.h"

#include <QApplication>
#include <QDialog>
#include <QHBoxLayout>
#include <QImage>
#include <QImageWriter>
#include <QLabel>
#include <QLayout>
#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QSaveFile>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

struct Options {
    int quitAfter = -1; // milliseconds; negative: run until closed
    int animation = -1; // -1: as configured, 0: off, 1: on
    QString screenshot;
};

void usage(FILE* stream) {
    std::fprintf(stream, "usage: desktop_helpers_example [--quit-after MS] [--animation on|off] "
                         "[--screenshot FILE]\n");
}

bool parse(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const bool hasValue = i + 1 < argc;
        if (argument == "--quit-after" && hasValue) {
            char* end = nullptr;
            const long value = std::strtol(argv[++i], &end, 10);
            if (*end != '\0' || value < 0 || value > 3600000) {
                return false;
            }
            options.quitAfter = static_cast<int>(value);
        } else if (argument == "--animation" && hasValue) {
            const std::string value = argv[++i];
            if (value != "on" && value != "off") {
                return false;
            }
            options.animation = value == "on" ? 1 : 0;
        } else if (argument == "--screenshot" && hasValue) {
            options.screenshot = QString::fromLocal8Bit(argv[++i]);
        } else {
            return false;
        }
    }
    return true;
}

// A wide banner, three times as wide as it is high, with a landmark in its centre so that the
// cut to the middle shows.
QPixmap banner() {
    QPixmap pixmap(720, 240);
    QPainter painter(&pixmap);
    QLinearGradient gradient(0, 0, 720, 0);
    gradient.setColorAt(0.0, QColor(0x1e, 0x3a, 0x5f));
    gradient.setColorAt(0.5, QColor(0x3d, 0x9a, 0x8b));
    gradient.setColorAt(1.0, QColor(0xe0, 0x7a, 0x3f));
    painter.fillRect(pixmap.rect(), gradient);
    painter.setPen(QPen(Qt::white, 6));
    painter.drawEllipse(QPoint(360, 120), 80, 80);
    painter.drawText(QRect(0, 100, 720, 40), Qt::AlignCenter, QStringLiteral("centre"));
    painter.setPen(QPen(Qt::black, 4));
    painter.drawText(QRect(10, 10, 200, 40), Qt::AlignLeft, QStringLiteral("left edge"));
    painter.drawText(QRect(510, 10, 200, 40), Qt::AlignRight, QStringLiteral("right edge"));
    return pixmap;
}

// The main window as it shows, with the dialog painted where it stands over it. Both are
// rendered from the widgets themselves rather than read back from the screen: a platform
// without a screen to read (offscreen) has nothing to give, and on a desktop another
// application's window could be in the way. Frames drawn by a window manager are left out.
QImage picture(QWidget& main, QWidget& dialog) {
    for (QWidget* widget : {&main, &dialog}) {
        // A layout request still queued would otherwise be rendered with the old geometry.
        if (QLayout* layout = widget->layout()) {
            layout->activate();
        }
    }
    QImage image = main.grab().toImage();
    if (!image.isNull() && dialog.isVisible()) {
        QPainter painter(&image);
        painter.drawPixmap(main.mapFromGlobal(dialog.mapToGlobal(QPoint(0, 0))), dialog.grab());
    }
    return image;
}

// Writes the picture as a whole or not at all; on failure `reason` says what went wrong.
bool save(const QImage& image, const QString& path, QString& reason) {
    if (image.isNull()) {
        reason = QStringLiteral("the window could not be rendered");
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        reason = file.errorString();
        return false;
    }
    QImageWriter writer(&file, "png");
    if (!writer.write(image)) {
        reason = writer.errorString();
        return false;
    }
    if (!file.commit()) {
        reason = file.errorString();
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    Options options;
    if (!parse(argc, argv, options)) {
        usage(stderr);
        return 2;
    }

    PRuntime* root = PRuntime::getInstance();
    if (root == nullptr || root->window() == nullptr || root->picture() == nullptr ||
        root->animation() == nullptr || root->shell() == nullptr || root->string() == nullptr ||
        root->config() == nullptr) {
        std::fprintf(stderr, "desktop_helpers_example: the runtime could not be created\n");
        return 1;
    }
    PRuntimeWindow* window = root->window();
    PRuntimeConfig* config = root->config();
    if (options.animation >= 0) {
        // For this run only: nothing is saved.
        config->_set_setting_status("WindowAnimation", options.animation == 1);
    }
    const bool animated = config->getSettingStatus("WindowAnimation");

    QWidget main;
    main.resize(560, 420);
    window->setWindowTitle(&main, NString("Pallix – 桌面助手"));
    window->setToolTip(&main, QStringLiteral("Every text here went through PRuntimeWindow"));

    auto* layout = new QVBoxLayout(&main);
    auto* fromFramework = new QLabel;
    window->setText(fromFramework, NString("设备已连接 (text set from an NString)"));
    auto* fromToolkit = new QLabel;
    window->setText(fromToolkit, QStringLiteral("Device connected (text set from a QString)"));
    auto* readBack = new QLabel;
    window->setText(readBack, NString("Read back: ") + window->text(fromFramework));
    layout->addWidget(fromFramework);
    layout->addWidget(fromToolkit);
    layout->addWidget(readBack);

    auto* pictures = new QHBoxLayout;
    const QPixmap source = banner();
    auto* original = new QLabel;
    original->setPixmap(source.scaledToWidth(240, Qt::SmoothTransformation));
    original->setToolTip(QStringLiteral("the whole banner, 720 x 240"));
    auto* cropped = new QLabel;
    cropped->setPixmap(root->picture()->middle(source, 120, 120));
    window->setToolTip(cropped, NString("middle(banner, 120, 120)"));
    pictures->addWidget(original);
    pictures->addWidget(cropped);
    pictures->addStretch();
    layout->addLayout(pictures);

    auto* track = new QWidget;
    track->setFixedHeight(36);
    auto* marker = new QLabel(track);
    marker->setText(animated ? QStringLiteral("animated") : QStringLiteral("no animation"));
    marker->setStyleSheet(QStringLiteral("background: #3d9a8b; color: white; padding: 4px;"));
    marker->adjustSize();
    layout->addWidget(track);
    auto* setting = new QLabel;
    window->setText(setting, NString(animated ? "WindowAnimation: on" : "WindowAnimation: off"));
    layout->addWidget(setting);

    auto* buttons = new QHBoxLayout;
    auto* openFolder = new QPushButton;
    window->setText(openFolder, NString("打开配置目录"));
    window->setToolTip(openFolder,
                       NString("OpenDirectory(") + NApplication::DirectoryConfig() + NString(")"));
    auto* openSite = new QPushButton;
    window->setText(openSite, QStringLiteral("Visit the web site"));
    buttons->addWidget(openFolder);
    buttons->addWidget(openSite);
    layout->addLayout(buttons);
    layout->addStretch();

    QObject::connect(openFolder, &QPushButton::clicked,
                     [root] { root->shell()->OpenDirectory(NApplication::DirectoryConfig()); });
    QObject::connect(openSite, &QPushButton::clicked, [root] { root->shell()->OpenTolvane(); });

    main.move(window->relativeX(&main), window->relativeY(&main));
    window->activate(&main);

    QDialog dialog(&main);
    dialog.resize(260, 90);
    dialog.setStyleSheet(
        QStringLiteral("QDialog { background: #fff7d6; border: 2px solid #c9a227; }"));
    window->setWindowTitle(&dialog, QStringLiteral("Centred over its window"));
    auto* dialogLayout = new QVBoxLayout(&dialog);
    auto* sizes = new QLabel;
    PRuntimeString* strings = root->string();
    sizes->setText(strings->stringFromSize(3ULL << 30, 2, true) + QStringLiteral(" · ") +
                   strings->cpuCore(6) + QStringLiteral(" · ") +
                   strings->wifiTypeToString(EDEVICE_WIFI_TYPE_HIGH_TEMPERATURE, true));
    dialogLayout->addWidget(sizes);
    dialog.move(window->relativeX(&dialog), window->relativeY(&dialog));
    window->activate(&dialog);

    // Across the track, or straight to its end at once without animations.
    root->animation()->run(marker, "pos", 900, QPoint(0, 4), QPoint(380, 4),
                           QEasingCurve(QEasingCurve::InOutCubic));

    if (options.quitAfter >= 0) {
        QTimer::singleShot(options.quitAfter, &application, [&] {
            QString reason;
            if (!options.screenshot.isEmpty() &&
                !save(picture(main, dialog), options.screenshot, reason)) {
                std::fprintf(stderr, "desktop_helpers_example: cannot write %s: %s\n",
                             options.screenshot.toLocal8Bit().constData(),
                             reason.toLocal8Bit().constData());
                application.exit(1);
                return;
            }
            application.quit();
        });
    }
    const int status = application.exec();
    PRuntime::freeInstance();
    return status;
}
