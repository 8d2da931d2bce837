// The conversions of the file formats, shared by the library's readers and the pallix tool.

#include "Conversions.h"
#include "ConfigurationFormat.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <climits>
#include <cstring>
#include <string>

namespace format = pallix::format;

namespace {

// The attribute "v" of a one-element document holding `value`.
class Attribute {
public:
    explicit Attribute(const std::string& value) {
        m_document.append_child("e").append_attribute("v").set_value(value.c_str());
    }
    pugi::xml_attribute get() const { return m_document.child("e").attribute("v"); }

private:
    pugi::xml_document m_document;
};

} // namespace

TEST(FormatConversions, ThePortKeepsItsLowSixteenBits) {
    EXPECT_EQ(format::readPort(Attribute("62078").get()), 62078);
    EXPECT_EQ(format::readPort(Attribute("65535").get()), 65535);
    EXPECT_EQ(format::readPort(Attribute("70000").get()), 4464);
    EXPECT_EQ(format::readPort(Attribute("0x10001").get()), 1);
    EXPECT_EQ(format::readPort(Attribute("port").get()), 0);
    EXPECT_EQ(format::readPort(pugi::xml_attribute()), 0);
}

TEST(FormatConversions, ThirtyTwoBitReadsSaturate) {
    EXPECT_EQ(format::readInt32(Attribute("5000000000").get(), 0), INT_MAX);
    EXPECT_EQ(format::readInt32(Attribute("-5000000000").get(), 0), INT_MIN);
    EXPECT_EQ(format::readInt32(Attribute(" 42").get(), 0), 42);
    EXPECT_EQ(format::readInt32(pugi::xml_attribute(), 3), 3);
    EXPECT_EQ(format::readUInt64(Attribute("18446744073709551615").get(), 0), ULLONG_MAX);
    EXPECT_EQ(format::readInt64(Attribute("-1").get(), 0), -1);
}

TEST(FormatConversions, IdentifiersAreUpperCaseHexadecimalOfTheirWidth) {
    EXPECT_EQ(format::chipText(0x8020), "8020");
    EXPECT_EQ(format::chipText(0x10), "0010");
    EXPECT_EQ(format::chipText(0x12345), "12345");
    EXPECT_EQ(format::boardText(0xC), "0C");
    EXPECT_EQ(format::boardText(format::kFallbackBoard), "00");
    EXPECT_EQ(format::deviceIdText(0x1A2B), "0000000000001A2B");
    EXPECT_EQ(format::deviceIdText(ULLONG_MAX), "FFFFFFFFFFFFFFFF");
}

TEST(FormatConversions, DeviceIdsAreReadAsStrtoullReadsThem) {
    EXPECT_EQ(format::readDeviceId("0000000000001A2B"), 0x1A2Bu);
    EXPECT_EQ(format::readDeviceId("1a2b"), 0x1A2Bu);
    EXPECT_EQ(format::readDeviceId("0x1a2b"), 0x1A2Bu);
    EXPECT_EQ(format::readDeviceId("12zz"), 0x12u);
    EXPECT_EQ(format::readDeviceId("zz"), 0u);
    EXPECT_EQ(format::readDeviceId("FFFFFFFFFFFFFFFFFF"), ULLONG_MAX);
}

TEST(FormatConversions, Base64NeedsWholeGroupsAndPaddingOnlyAtTheEnd) {
    EXPECT_TRUE(format::isBase64(""));
    EXPECT_TRUE(format::isBase64("RjJMWEswUUpIRzdG"));
    EXPECT_TRUE(format::isBase64("YQ=="));
    EXPECT_TRUE(format::isBase64("YWI="));
    EXPECT_FALSE(format::isBase64("YQ"));
    EXPECT_FALSE(format::isBase64("Y==="));
    EXPECT_FALSE(format::isBase64("YQ==YQ=="));
    EXPECT_FALSE(format::isBase64("YW-="));
}

TEST(FormatConfiguration, EveryLegacySettingIsAKnownSetting) {
    for (const auto& legacy : format::configuration::legacy::kSettings) {
        bool known = false;
        for (const auto& setting : format::configuration::kKnownSettings) {
            known = known || std::strcmp(setting.name, legacy.name) == 0;
        }
        EXPECT_TRUE(known) << legacy.name;
    }
    EXPECT_EQ(format::configuration::kKnownSettingCount, 13u);
}

TEST(FormatConfiguration, EveryPreferenceIsFoundByItsElement) {
    namespace cfg = format::configuration;
    for (const cfg::Preference& preference : cfg::kPreferences) {
        EXPECT_EQ(&cfg::preference(preference.element), &preference) << preference.element;
    }
    static_assert(cfg::preference(cfg::kDownloadMaxSpeed).width == cfg::Width::Int32);
    EXPECT_EQ(cfg::preference(cfg::kSameTimeDownloadNumber).byDefault,
              cfg::kDefaultSameTimeDownloadNumber);
    EXPECT_THROW(cfg::preference(cfg::kLastVersion), std::invalid_argument);
    EXPECT_THROW(cfg::preference(cfg::kStatus), std::invalid_argument);
}

TEST(FormatCharacters, XmlCharactersAreThoseThatXml10Allows) {
    for (unsigned long long allowed : {0x9ULL, 0xAULL, 0xDULL, 0x20ULL, 0xD7FFULL, 0xE000ULL,
                                       0xFFFDULL, 0x10000ULL, 0x10FFFFULL}) {
        EXPECT_TRUE(format::isXmlCharacter(allowed)) << std::hex << allowed;
    }
    for (unsigned long long refused : {0x0ULL, 0x1ULL, 0x8ULL, 0xBULL, 0x1FULL, 0xD800ULL,
                                       0xDFFFULL, 0xFFFEULL, 0xFFFFULL, 0x110000ULL}) {
        EXPECT_FALSE(format::isXmlCharacter(refused)) << std::hex << refused;
    }
}

TEST(FormatCharacters, TextThatXmlCannotCarryIsNamed) {
    EXPECT_EQ(format::xmlTextProblem(""), "");
    EXPECT_EQ(
        format::xmlTextProblem("tab\tline\ncarriage\r \xe9\xab\x98\xe6\xb8\xa9 \xf0\x9f\x98\x80"),
        "");
    EXPECT_EQ(format::xmlTextProblem("a\x01"),
              "character U+0001, which an XML 1.0 file cannot carry");
    EXPECT_EQ(format::xmlTextProblem("\xef\xbf\xbe"),
              "character U+FFFE, which an XML 1.0 file cannot carry");
    EXPECT_EQ(format::xmlTextProblem("ab\xff"), "a byte that is not UTF-8 (byte 3)");
    // An overlong form, an encoded surrogate, a cut-short sequence and a code point past U+10FFFF.
    EXPECT_EQ(format::xmlTextProblem("\xc0\xaf"), "a byte that is not UTF-8 (byte 1)");
    EXPECT_EQ(format::xmlTextProblem("\xed\xa0\x80"), "a byte that is not UTF-8 (byte 1)");
    EXPECT_EQ(format::xmlTextProblem("x\xe6\xb8"), "a byte that is not UTF-8 (byte 2)");
    EXPECT_EQ(format::xmlTextProblem("\xf4\x90\x80\x80"), "a byte that is not UTF-8 (byte 1)");
}
