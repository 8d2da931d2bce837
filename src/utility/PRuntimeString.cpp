#include "PRuntimeString.h"

#include "Operation.h"

#include <QByteArray>
#include <QDateTime>
#include <QObject>
#include <QRegExp>

#include <iterator>

namespace {

// Source texts, looked up through QObject::tr when used; the marker lets the translation
// tools find them here.
const char* const coreNames[] = {
    QT_TRANSLATE_NOOP("QObject", "未知"),   QT_TRANSLATE_NOOP("QObject", "单核"),
    QT_TRANSLATE_NOOP("QObject", "双核"),   QT_TRANSLATE_NOOP("QObject", "三核"),
    QT_TRANSLATE_NOOP("QObject", "四核"),   QT_TRANSLATE_NOOP("QObject", "五核"),
    QT_TRANSLATE_NOOP("QObject", "六核"),   QT_TRANSLATE_NOOP("QObject", "七核"),
    QT_TRANSLATE_NOOP("QObject", "八核"),   QT_TRANSLATE_NOOP("QObject", "九核"),
    QT_TRANSLATE_NOOP("QObject", "十核"),   QT_TRANSLATE_NOOP("QObject", "十一核"),
    QT_TRANSLATE_NOOP("QObject", "十二核"), QT_TRANSLATE_NOOP("QObject", "十三核"),
    QT_TRANSLATE_NOOP("QObject", "十四核"), QT_TRANSLATE_NOOP("QObject", "十五核"),
    QT_TRANSLATE_NOOP("QObject", "十六核"),
};

const char* const wifiNames[] = {
    QT_TRANSLATE_NOOP("QObject", "未知"),     QT_TRANSLATE_NOOP("QObject", "高温WiFi"),
    QT_TRANSLATE_NOOP("QObject", "中温WiFi"), QT_TRANSLATE_NOOP("QObject", "低温WiFi"),
    QT_TRANSLATE_NOOP("QObject", "加密WiFi"),
};

constexpr unsigned int unknownIndex = 0;

// Not only digits, not only ASCII letters, not only characters that are neither; 6 to 32 of
// them. QRegExp's \d also takes digits of other scripts, and its "." counts UTF-16 units.
const char passwordPattern[] = "^(?![\\d]+$)(?![a-zA-Z]+$)(?![^\\da-zA-Z]+$).{6,32}$";

const char dateFormat[] = "yyyy-MM-dd";

} // namespace

PRuntimeString::PRuntimeString() noexcept = default;

PRuntimeString::~PRuntimeString() = default;

NString PRuntimeString::convert(const QString& text) const {
    return pallix::operation([&] { return _80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(text); });
}

QString PRuntimeString::convert(const NString& text) const {
    return pallix::operation([&] { return _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(text); });
}

QString PRuntimeString::cpuCore(unsigned int cores) const {
    return pallix::operation([&] {
        const unsigned int index = cores < std::size(coreNames) ? cores : unknownIndex;
        return QObject::tr(coreNames[index]);
    });
}

QString PRuntimeString::wifiTypeToString(EDEVICE_WIFI_TYPE type) const {
    return pallix::operation([&] { return wifiTypeToString(type, false); });
}

QString PRuntimeString::wifiTypeToString(EDEVICE_WIFI_TYPE type, bool spaced) const {
    return pallix::operation([&] {
        const unsigned int value = static_cast<unsigned int>(type);
        const unsigned int index = value < std::size(wifiNames) ? value : unknownIndex;
        QString name = QObject::tr(wifiNames[index]);
        if (spaced) {
            name.replace(QStringLiteral("WiFi"), QStringLiteral(" WiFi"), Qt::CaseSensitive);
        }
        return name;
    });
}

QString PRuntimeString::secondToString(long long seconds) const {
    return pallix::operation([&] {
        const QDateTime instant = QDateTime::fromTime_t(static_cast<uint>(seconds));
        return instant.toString(QString::fromLatin1(dateFormat));
    });
}

long long PRuntimeString::stringToSecond(const QString& date) const {
    return pallix::operation([&]() -> long long {
        // East of UTC the local midnight of the epoch's day lies before the epoch, where the
        // unsigned count has no value; the day still has to map to the epoch itself.
        if (date == QLatin1String("1970-01-01")) {
            return 0;
        }
        const QDateTime midnight = QDateTime::fromString(date, QString::fromLatin1(dateFormat));
        return static_cast<long long>(midnight.toTime_t());
    });
}

long long PRuntimeString::secondToDay(long long seconds) const {
    return pallix::operation([&] { return stringToSecond(secondToString(seconds)); });
}

bool PRuntimeString::passwordMatch(const QString& password) const {
    return pallix::operation([&] {
        // A fresh expression per call: QRegExp keeps match state, and this object is shared.
        const QRegExp rule(QString::fromLatin1(passwordPattern));
        return rule.exactMatch(password);
    });
}

QString PRuntimeString::stringFromSize(unsigned long long bytes, int precision, bool spaced) {
    return pallix::operation([&] {
        const QString separator = spaced ? QStringLiteral(" ") : QString();
        double size = static_cast<double>(bytes);
        if (size < 1024.0) {
            return QString::number(bytes) + separator + QStringLiteral("Byte");
        }
        static const char* const units[] = {"KB", "MB", "GB"};
        for (const char* unit : units) {
            size /= 1024.0;
            if (size < 1024.0) {
                return QString::number(size, 'f', precision) + separator +
                       QString::fromLatin1(unit);
            }
        }
        size /= 1024.0;
        return QString::number(size, 'f', precision) + separator + QStringLiteral("TB");
    });
}

NString _80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(const QString& text) noexcept {
    const QByteArray utf8 = text.toUtf8();
    // Taken as a C string on purpose: the text ends at an embedded NUL.
    return NString(utf8.constData());
}

QString _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(const NString& text) noexcept {
    // Measured up to the first NUL, like the C string the framework hands over.
    return QString::fromUtf8(text.data());
}
