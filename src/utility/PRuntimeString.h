#pragma once

#include "EDEVICE_WIFI_TYPE.h"
#include "NString.h"
#include "PallixRuntimeExport.h"

#include <QString>

// Short texts for the interface: sizes, dates, core counts, Wi-Fi kinds; the password rule;
// conversion between the framework's NString and the toolkit's QString. It holds no state.
//
// The user-visible words are Chinese source texts passed through QObject::tr (context
// "QObject"), so that a translation installed on the application replaces them.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeString {
public:
    PRuntimeString() noexcept;
    virtual ~PRuntimeString();

    // Through UTF-8; the text ends at the first NUL character in either direction.
    virtual NString convert(const QString& text) const;
    virtual QString convert(const NString& text) const;

    // "单核" to "十六核"; "未知" for 0 and above 16.
    virtual QString cpuCore(unsigned int cores) const;
    virtual QString wifiTypeToString(EDEVICE_WIFI_TYPE type) const;
    // With `spaced`, every "WiFi" of the (translated) text gets a blank in front of it.
    virtual QString wifiTypeToString(EDEVICE_WIFI_TYPE type, bool spaced) const;

    // The local date ("yyyy-MM-dd") of the instant; the seconds are cut to an unsigned 32-bit
    // count first, so negative values and dates after early 2106 wrap.
    virtual QString secondToString(long long seconds) const;
    // Local midnight at the start of a "yyyy-MM-dd" date, in seconds since the epoch.
    // "1970-01-01" is 0 in every time zone; anything that does not parse, or that lies before
    // the epoch, is 4294967295.
    virtual long long stringToSecond(const QString& date) const;
    // The instant truncated to the start of its local day.
    virtual long long secondToDay(long long seconds) const;

    // 6 to 32 characters, not only digits, not only ASCII letters and not only other
    // characters (letters outside ASCII count as other characters).
    virtual bool passwordMatch(const QString& password) const;

    // "1023Byte", "1.50KB", "1 MB" ... up to "TB" (base 1024); `precision` decimals from KB on,
    // `spaced` puts a blank between number and unit.
    virtual QString stringFromSize(unsigned long long bytes, int precision, bool spaced);

    PRuntimeString(const PRuntimeString&) = delete;
    PRuntimeString& operator=(const PRuntimeString&) = delete;
};

// The two conversions of PRuntimeString::convert as free functions, for code that has no
// PRuntimeString at hand. Their names are fixed by the binary interface.
PALLIX_RUNTIME_EXPORT NString _80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(const QString& text) noexcept;
PALLIX_RUNTIME_EXPORT QString _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(const NString& text) noexcept;
