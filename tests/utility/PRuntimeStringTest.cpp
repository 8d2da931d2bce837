#include "VirtualSlot.h"

#include "PRuntime.h"
#include "PRuntimeString.h"

#include <QCoreApplication>
#include <QTranslator>

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

using pallix::test::virtualSlot;

namespace {

QString u(const char* utf8) {
    return QString::fromUtf8(utf8);
}

// Runs the rest of the test in the given time zone (each test case has a process of its own).
void useTimeZone(const char* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
}

// Days from 1970-01-01 to the civil date (proleptic Gregorian), independent of any library.
long long daysFromCivil(long long year, unsigned month, unsigned day) {
    year -= month <= 2;
    const long long era = (year >= 0 ? year : year - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(year - era * 400);
    const unsigned doy = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<long long>(doe) - 719468;
}

// Seconds since the epoch of local midnight of the date in a zone `utcOffset` seconds east of
// UTC on that day.
long long localMidnight(long long year, unsigned month, unsigned day, long long utcOffset) {
    return daysFromCivil(year, month, day) * 86400 - utcOffset;
}

constexpr long long invalid = 4294967295LL;
constexpr long long est = -5 * 3600; // New York in winter
constexpr long long edt = -4 * 3600; // New York in summer
constexpr long long cst = 8 * 3600;  // Shanghai, all year

class StringTest : public ::testing::Test {
protected:
    void TearDown() override { PRuntime::freeInstance(); }
    PRuntimeString strings;
};

// Answers for the texts it knows and records every request.
class RecordingTranslator : public QTranslator {
public:
    struct Request {
        std::string context;
        std::string source;
        bool hasDisambiguation;
        int n;
    };

    bool isEmpty() const override { return false; }

    QString translate(const char* context, const char* sourceText, const char* disambiguation,
                      int n) const override {
        requests.push_back({context != nullptr ? context : "",
                            sourceText != nullptr ? sourceText : "", disambiguation != nullptr, n});
        const QString source = QString::fromUtf8(sourceText);
        if (source == u("双核")) {
            return QStringLiteral("dual-core");
        }
        if (source == u("高温WiFi")) {
            return QStringLiteral("high-temperature WiFi");
        }
        if (source == u("未知")) {
            return QStringLiteral("unknown");
        }
        return QString();
    }

    mutable std::vector<Request> requests;
};

} // namespace

TEST(StringSlots, VirtualOperationsKeepTheirSlots) {
    using S = PRuntimeString;
    EXPECT_EQ(virtualSlot(static_cast<NString (S::*)(const QString&) const>(&S::convert)), 3u);
    EXPECT_EQ(virtualSlot(static_cast<QString (S::*)(const NString&) const>(&S::convert)), 4u);
    EXPECT_EQ(virtualSlot(&S::cpuCore), 5u);
    EXPECT_EQ(
        virtualSlot(static_cast<QString (S::*)(EDEVICE_WIFI_TYPE) const>(&S::wifiTypeToString)),
        6u);
    EXPECT_EQ(virtualSlot(
                  static_cast<QString (S::*)(EDEVICE_WIFI_TYPE, bool) const>(&S::wifiTypeToString)),
              7u);
    EXPECT_EQ(virtualSlot(&S::secondToString), 8u);
    EXPECT_EQ(virtualSlot(&S::stringToSecond), 9u);
    EXPECT_EQ(virtualSlot(&S::secondToDay), 10u);
    EXPECT_EQ(virtualSlot(&S::passwordMatch), 11u);
    EXPECT_EQ(virtualSlot(&S::stringFromSize), 12u);
}

TEST_F(StringTest, RootHandsOutTheComponent) {
    PRuntimeString* fromRoot = PRuntime::getInstance()->string();
    ASSERT_NE(fromRoot, nullptr);
    EXPECT_EQ(fromRoot->cpuCore(2), u("双核"));
}

// --- conversion -------------------------------------------------------------------------

TEST_F(StringTest, ConvertRoundTripsUnicodeThroughUtf8) {
    const char* utf8 = "Grüße, 世界 😀";
    const QString text = u(utf8);
    const NString converted = strings.convert(text);
    EXPECT_EQ(converted.toStdString(), std::string(utf8));
    EXPECT_EQ(strings.convert(converted), text);
}

TEST_F(StringTest, ConvertOfEmptyTextsIsEmpty) {
    EXPECT_TRUE(strings.convert(QString()).empty());
    EXPECT_TRUE(strings.convert(NString()).isEmpty());
}

TEST_F(StringTest, QStringEndsAtAnEmbeddedNul) {
    QString text = QStringLiteral("ab");
    text.append(QChar(0));
    text.append(QStringLiteral("cd"));
    ASSERT_EQ(text.size(), 5);
    EXPECT_EQ(strings.convert(text).toStdString(), "ab");
    EXPECT_EQ(_80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(text).toStdString(), "ab");
}

TEST_F(StringTest, NStringEndsAtAnEmbeddedNul) {
    const NString text("ab\0cd", 5);
    ASSERT_EQ(text.size(), 5u);
    EXPECT_EQ(strings.convert(text), QStringLiteral("ab"));
    EXPECT_EQ(_8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(text), QStringLiteral("ab"));
}

TEST_F(StringTest, InvalidUtf8BecomesReplacementCharacter) {
    const QString converted = strings.convert(NString("a\xff"
                                                      "b"));
    EXPECT_EQ(converted, QString(QStringLiteral("a")) + QChar(0xFFFD) + QStringLiteral("b"));
}

TEST_F(StringTest, FreeConvertersMatchTheMembers) {
    const QString text = u("配置 – configuration");
    EXPECT_EQ(_80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(text), strings.convert(text));
    const NString framework("日志/ログ");
    EXPECT_EQ(_8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(framework), strings.convert(framework));
}

// --- core counts and Wi-Fi kinds ------------------------------------------------------------

TEST_F(StringTest, CpuCoreNamesEveryCountFromOneToSixteen) {
    const char* names[] = {"单核",   "双核",   "三核",   "四核",  "五核",   "六核",
                           "七核",   "八核",   "九核",   "十核",  "十一核", "十二核",
                           "十三核", "十四核", "十五核", "十六核"};
    for (unsigned int cores = 1; cores <= 16; ++cores) {
        EXPECT_EQ(strings.cpuCore(cores), u(names[cores - 1])) << cores;
    }
}

TEST_F(StringTest, CpuCoreOfZeroAndAboveSixteenIsUnknown) {
    EXPECT_EQ(strings.cpuCore(0), u("未知"));
    EXPECT_EQ(strings.cpuCore(17), u("未知"));
    EXPECT_EQ(strings.cpuCore(UINT_MAX), u("未知"));
    EXPECT_EQ(strings.cpuCore(16), u("十六核"));
}

TEST_F(StringTest, WifiTypeNamesEveryKind) {
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(0)), u("未知"));
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(1)), u("高温WiFi"));
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(2)), u("中温WiFi"));
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(3)), u("低温WiFi"));
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(4)), u("加密WiFi"));
}

TEST_F(StringTest, WifiTypeOutsideTheKnownValuesIsUnknown) {
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(5)), u("未知"));
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(0xFFFFFFFFu)), u("未知"));
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(5), true), u("未知"));
}

TEST_F(StringTest, SpacedWifiTypePutsABlankBeforeWifi) {
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(1), true), u("高温 WiFi"));
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(1), false), u("高温WiFi"));
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(4), true), u("加密 WiFi"));
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(0), true), u("未知"));
}

TEST_F(StringTest, SingleArgumentWifiTypeIsTheUnspacedOne) {
    for (unsigned int value = 0; value <= 6; ++value) {
        EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(value)),
                  strings.wifiTypeToString(EDEVICE_WIFI_TYPE(value), false))
            << value;
    }
}

TEST_F(StringTest, SingleArgumentWifiTypeGoesThroughTheTwoArgumentOne) {
    struct Spy : PRuntimeString {
        mutable int calls = 0;
        mutable bool lastSpaced = true;
        QString wifiTypeToString(EDEVICE_WIFI_TYPE type, bool spaced) const override {
            ++calls;
            lastSpaced = spaced;
            return PRuntimeString::wifiTypeToString(type, spaced);
        }
        using PRuntimeString::wifiTypeToString;
    } spy;
    const PRuntimeString& base = spy;
    EXPECT_EQ(base.wifiTypeToString(EDEVICE_WIFI_TYPE(2)), u("中温WiFi"));
    EXPECT_EQ(spy.calls, 1);
    EXPECT_FALSE(spy.lastSpaced);
}

TEST_F(StringTest, TextsGoThroughTheTranslationOfQObject) {
    RecordingTranslator translator;
    ASSERT_TRUE(QCoreApplication::installTranslator(&translator));
    // Installing asks for the application's own texts; only the requests that follow count.
    translator.requests.clear();
    EXPECT_EQ(strings.cpuCore(2), QStringLiteral("dual-core"));
    EXPECT_EQ(strings.cpuCore(99), QStringLiteral("unknown"));
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(1)),
              QStringLiteral("high-temperature WiFi"));
    // The blank goes in after translation, into whatever text the translation gave.
    EXPECT_EQ(strings.wifiTypeToString(EDEVICE_WIFI_TYPE(1), true),
              QStringLiteral("high-temperature  WiFi"));
    // Texts without a translation stay as they are.
    EXPECT_EQ(strings.cpuCore(3), u("三核"));
    QCoreApplication::removeTranslator(&translator);

    ASSERT_EQ(translator.requests.size(), 5u);
    for (const auto& request : translator.requests) {
        EXPECT_EQ(request.context, "QObject");
        EXPECT_FALSE(request.hasDisambiguation) << request.source;
        EXPECT_EQ(request.n, -1) << request.source;
    }
}

// --- sizes ------------------------------------------------------------------------------------

TEST_F(StringTest, SizeBelowOneKilobyteIsWholeBytes) {
    EXPECT_EQ(strings.stringFromSize(1023, 2, false), QStringLiteral("1023Byte"));
    EXPECT_EQ(strings.stringFromSize(0, 2, false), QStringLiteral("0Byte"));
    // The unit stays singular, and the precision does not apply to bytes.
    EXPECT_EQ(strings.stringFromSize(1, 3, false), QStringLiteral("1Byte"));
    EXPECT_EQ(strings.stringFromSize(2, 0, true), QStringLiteral("2 Byte"));
}

TEST_F(StringTest, ExactlyOneKilobyteIsAlreadyKilobytes) {
    EXPECT_EQ(strings.stringFromSize(1024, 2, true), QStringLiteral("1.00 KB"));
    EXPECT_EQ(strings.stringFromSize(1024, 2, false), QStringLiteral("1.00KB"));
}

TEST_F(StringTest, SizeExamplesFromTheInterface) {
    EXPECT_EQ(strings.stringFromSize(1536, 1, false), QStringLiteral("1.5KB"));
    EXPECT_EQ(strings.stringFromSize(1048576, 0, false), QStringLiteral("1MB"));
    EXPECT_EQ(strings.stringFromSize(1ULL << 50, 2, false), QStringLiteral("1024.00TB"));
}

TEST_F(StringTest, SizeAtEveryUnitBoundaryWithPrecisionZeroToThree) {
    struct Row {
        unsigned long long bytes;
        const char* texts[4]; // precision 0, 1, 2, 3
    };
    const Row rows[] = {
        {1023ULL, {"1023Byte", "1023Byte", "1023Byte", "1023Byte"}},
        {1024ULL, {"1KB", "1.0KB", "1.00KB", "1.000KB"}},
        // 1023.9990234375 KB: still kilobytes, rounded up by the formatting.
        {1048575ULL, {"1024KB", "1024.0KB", "1024.00KB", "1023.999KB"}},
        {1048576ULL, {"1MB", "1.0MB", "1.00MB", "1.000MB"}},
        {(1ULL << 30) - 1, {"1024MB", "1024.0MB", "1024.00MB", "1024.000MB"}},
        {1ULL << 30, {"1GB", "1.0GB", "1.00GB", "1.000GB"}},
        {(1ULL << 40) - 1, {"1024GB", "1024.0GB", "1024.00GB", "1024.000GB"}},
        {1ULL << 40, {"1TB", "1.0TB", "1.00TB", "1.000TB"}},
        // There is no larger unit.
        {1ULL << 50, {"1024TB", "1024.0TB", "1024.00TB", "1024.000TB"}},
        // 2^64 - 1 becomes the double 2^64: 2^24 terabytes.
        {ULLONG_MAX, {"16777216TB", "16777216.0TB", "16777216.00TB", "16777216.000TB"}},
    };
    for (const Row& row : rows) {
        for (int precision = 0; precision <= 3; ++precision) {
            EXPECT_EQ(strings.stringFromSize(row.bytes, precision, false),
                      QString::fromLatin1(row.texts[precision]))
                << row.bytes << " at precision " << precision;
        }
    }
}

TEST_F(StringTest, SpacedSizePutsOneBlankBeforeEveryUnit) {
    EXPECT_EQ(strings.stringFromSize(1023, 1, true), QStringLiteral("1023 Byte"));
    EXPECT_EQ(strings.stringFromSize(1048576, 1, true), QStringLiteral("1.0 MB"));
    EXPECT_EQ(strings.stringFromSize(1ULL << 30, 1, true), QStringLiteral("1.0 GB"));
    EXPECT_EQ(strings.stringFromSize(1ULL << 40, 1, true), QStringLiteral("1.0 TB"));
}

TEST_F(StringTest, SizeHalvesRoundAsTheToolkitFormats) {
    // 2.5 KB at no decimals: the toolkit rounds a half away from zero.
    EXPECT_EQ(strings.stringFromSize(2560, 0, false), QStringLiteral("3KB"));
    EXPECT_EQ(strings.stringFromSize(1536, 0, false), QStringLiteral("2KB"));
}

TEST_F(StringTest, NegativePrecisionIsPassedToTheToolkit) {
    const double kilobytes = 1280.0 / 1024.0;
    EXPECT_EQ(strings.stringFromSize(1280, -1, false),
              QString::number(kilobytes, 'f', -1) + QStringLiteral("KB"));
    EXPECT_EQ(strings.stringFromSize(1023, -1, false), QStringLiteral("1023Byte"));
}

// --- dates ------------------------------------------------------------------------------------

TEST_F(StringTest, EpochDayIsZeroInEveryTimeZone) {
    for (const char* zone :
         {"UTC", "America/New_York", "Asia/Shanghai", "Pacific/Kiritimati", "Pacific/Pago_Pago"}) {
        useTimeZone(zone);
        EXPECT_EQ(strings.stringToSecond(QStringLiteral("1970-01-01")), 0) << zone;
    }
}

TEST_F(StringTest, SecondToStringGivesTheUtcDateInUtc) {
    useTimeZone("UTC");
    EXPECT_EQ(strings.secondToString(0), QStringLiteral("1970-01-01"));
    EXPECT_EQ(strings.secondToString(86399), QStringLiteral("1970-01-01"));
    EXPECT_EQ(strings.secondToString(86400), QStringLiteral("1970-01-02"));
    EXPECT_EQ(strings.secondToString(localMidnight(2024, 2, 29, 0)), QStringLiteral("2024-02-29"));
}

TEST_F(StringTest, SecondToStringWrapsToAnUnsigned32BitCount) {
    useTimeZone("UTC");
    // 4294967295 s is 2106-02-07 06:28:15 UTC; -1 wraps onto it, 2^32 back onto the epoch.
    EXPECT_EQ(strings.secondToString(4294967295LL), QStringLiteral("2106-02-07"));
    EXPECT_EQ(strings.secondToString(-1), QStringLiteral("2106-02-07"));
    EXPECT_EQ(strings.secondToString(4294967296LL), QStringLiteral("1970-01-01"));
    EXPECT_EQ(strings.secondToString(4294967296LL + 86400), QStringLiteral("1970-01-02"));
}

TEST_F(StringTest, StringToSecondInUtc) {
    useTimeZone("UTC");
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("1970-01-02")), 86400);
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("2024-02-29")), localMidnight(2024, 2, 29, 0));
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("2106-02-07")), localMidnight(2106, 2, 7, 0));
}

TEST_F(StringTest, StringToSecondBeyondTheUnsignedRangeIsInvalid) {
    useTimeZone("UTC");
    // Midnight of 2106-02-08 is past 2^32 - 1 seconds; the day before the epoch is negative.
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("2106-02-08")), invalid);
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("1969-12-31")), invalid);
}

TEST_F(StringTest, UnparsableDatesGiveTheInvalidValue) {
    useTimeZone("UTC");
    for (const char* text :
         {"", "not a date", "2024-02-30", "2024-13-01", "2024/01/02", "1970-01-01 00:00"}) {
        EXPECT_EQ(strings.stringToSecond(QString::fromLatin1(text)), invalid) << text;
    }
}

TEST_F(StringTest, StringToSecondWestOfUtc) {
    useTimeZone("America/New_York");
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("2024-01-15")),
              localMidnight(2024, 1, 15, est));
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("2024-07-04")), localMidnight(2024, 7, 4, edt));
    // Days on which daylight saving time starts and ends (at 02:00, after midnight).
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("2024-03-10")),
              localMidnight(2024, 3, 10, est));
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("2024-11-03")),
              localMidnight(2024, 11, 3, edt));
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("1970-01-02")), localMidnight(1970, 1, 2, est));
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("1969-12-31")), invalid);
}

TEST_F(StringTest, StringToSecondEastOfUtc) {
    useTimeZone("Asia/Shanghai");
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("2024-01-02")), localMidnight(2024, 1, 2, cst));
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("1970-01-02")), 57600);
    // The real local midnight of the epoch's day, -28800, has no unsigned value.
    EXPECT_EQ(strings.stringToSecond(QStringLiteral("1970-01-01")), 0);
}

TEST_F(StringTest, SecondToDayWestOfUtc) {
    useTimeZone("America/New_York");
    const long long midnight = localMidnight(2024, 7, 4, edt);
    EXPECT_EQ(strings.secondToString(midnight), QStringLiteral("2024-07-04"));
    EXPECT_EQ(strings.secondToDay(midnight), midnight);
    EXPECT_EQ(strings.secondToDay(midnight + 1), midnight);
    // 23:30 local is already the next day in UTC.
    EXPECT_EQ(strings.secondToDay(midnight + 23 * 3600 + 1800), midnight);
    EXPECT_EQ(strings.secondToDay(midnight + 86399), midnight);
    EXPECT_EQ(strings.secondToDay(midnight - 1), localMidnight(2024, 7, 3, edt));
    // The day of the change to standard time is 25 hours long.
    const long long longDay = localMidnight(2024, 11, 3, edt);
    EXPECT_EQ(strings.secondToDay(longDay + 24 * 3600 + 1800), longDay);
}

TEST_F(StringTest, SecondToDayOfTheEpochWestOfUtcIsInvalid) {
    useTimeZone("America/New_York");
    // The epoch is 1969-12-31 19:00 in New York; that day's midnight is before the epoch.
    EXPECT_EQ(strings.secondToString(0), QStringLiteral("1969-12-31"));
    EXPECT_EQ(strings.secondToDay(0), invalid);
    EXPECT_EQ(strings.secondToDay(5 * 3600), 0);
}

TEST_F(StringTest, SecondToDayEastOfUtc) {
    useTimeZone("Asia/Shanghai");
    const long long midnight = localMidnight(2024, 1, 2, cst);
    // 04:00 local is still the previous day in UTC.
    EXPECT_EQ(strings.secondToString(midnight + 4 * 3600), QStringLiteral("2024-01-02"));
    EXPECT_EQ(strings.secondToDay(midnight + 4 * 3600), midnight);
    EXPECT_EQ(strings.secondToDay(midnight + 86399), midnight);
    EXPECT_EQ(strings.secondToDay(midnight - 1), localMidnight(2024, 1, 1, cst));
    // Inside the epoch's local day the special case answers.
    EXPECT_EQ(strings.secondToDay(3600), 0);
}

TEST_F(StringTest, SecondToDayGoesThroughTheVirtualOperations) {
    struct Spy : PRuntimeString {
        mutable std::vector<std::string> calls;
        QString secondToString(long long seconds) const override {
            calls.push_back("secondToString");
            return PRuntimeString::secondToString(seconds);
        }
        long long stringToSecond(const QString& date) const override {
            calls.push_back("stringToSecond");
            return PRuntimeString::stringToSecond(date);
        }
    } spy;
    useTimeZone("UTC");
    EXPECT_EQ(spy.secondToDay(86400 + 5), 86400);
    EXPECT_EQ(spy.calls, (std::vector<std::string>{"secondToString", "stringToSecond"}));
}

// --- passwords --------------------------------------------------------------------------------

TEST_F(StringTest, PasswordExamplesFromTheRule) {
    EXPECT_TRUE(strings.passwordMatch(QStringLiteral("abc123")));
    EXPECT_TRUE(strings.passwordMatch(QStringLiteral("abc!!!")));
    EXPECT_FALSE(strings.passwordMatch(QStringLiteral("123456")));
    EXPECT_FALSE(strings.passwordMatch(QStringLiteral("abcdef")));
    EXPECT_FALSE(strings.passwordMatch(QStringLiteral("!!!!!!")));
    EXPECT_FALSE(strings.passwordMatch(QStringLiteral("a1")));
    EXPECT_FALSE(strings.passwordMatch(QString()));
}

TEST_F(StringTest, PasswordLengthsFiveSixThirtyTwoThirtyThree) {
    EXPECT_FALSE(strings.passwordMatch(QStringLiteral("ab12!")));
    EXPECT_TRUE(strings.passwordMatch(QStringLiteral("ab12!c")));
    const QString thirtyTwo = QStringLiteral("abcdefghijklmnopqrstuvwxyz123456");
    ASSERT_EQ(thirtyTwo.size(), 32);
    EXPECT_TRUE(strings.passwordMatch(thirtyTwo));
    EXPECT_FALSE(strings.passwordMatch(thirtyTwo + QStringLiteral("7")));
    EXPECT_FALSE(strings.passwordMatch(QString(33, QLatin1Char('a'))));
    EXPECT_FALSE(strings.passwordMatch(QString(33, QLatin1Char('!')) + QStringLiteral("1")));
}

TEST_F(StringTest, PasswordLettersOutsideAsciiAreOtherCharacters) {
    // Only "other" characters: rejected like "!!!!!!".
    EXPECT_FALSE(strings.passwordMatch(u("密码密码密码")));
    EXPECT_FALSE(strings.passwordMatch(u("Пароль")));
    EXPECT_FALSE(strings.passwordMatch(u("éééééé")));
    // Mixed with ASCII letters or digits: accepted.
    EXPECT_TRUE(strings.passwordMatch(u("密码abcd")));
    EXPECT_TRUE(strings.passwordMatch(u("Пароль1")));
    EXPECT_TRUE(strings.passwordMatch(u("ééé123")));
    EXPECT_TRUE(strings.passwordMatch(u("éééaaa")));
    EXPECT_FALSE(strings.passwordMatch(u("密码ab")));
}

TEST_F(StringTest, PasswordLengthCountsUtf16Units) {
    // A character outside the basic plane is two units for the expression.
    EXPECT_TRUE(strings.passwordMatch(u("a1😀😀")));
    EXPECT_FALSE(strings.passwordMatch(u("a1😀")));
    QString sixteenFaces;
    for (int i = 0; i < 16; ++i) {
        sixteenFaces += u("😀");
    }
    EXPECT_FALSE(strings.passwordMatch(sixteenFaces + QStringLiteral("a")));
    EXPECT_FALSE(strings.passwordMatch(sixteenFaces));
}

TEST_F(StringTest, PasswordIsMatchedWhole) {
    // Valid pieces inside a text that is too long do not make it valid.
    EXPECT_FALSE(strings.passwordMatch(QStringLiteral("abc123 abc123 abc123 abc123 abc123")));
    EXPECT_TRUE(strings.passwordMatch(QStringLiteral("abc 12")));
}
