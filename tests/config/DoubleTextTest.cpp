// setDouble() gives an attribute exactly the text that pugixml's set_value(double) gives it,
// the first time a value is written and every time after, in whatever locale.

#include "DoubleText.h"
#include "TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

std::vector<double> values() {
    std::vector<double> all = {0.0,
                               -0.0,
                               0.1,
                               -33.868820099999999,
                               1.0 / 3.0,
                               1e-300,
                               4.9406564584124654e-324,
                               123456789.123456789,
                               1e21,
                               std::numeric_limits<double>::max(),
                               std::numeric_limits<double>::lowest(),
                               std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(),
                               std::nan(""),
                               -std::nan("")};
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> degrees(-180.0, 180.0);
    for (int i = 0; i < 2000; ++i) {
        all.push_back(degrees(random));
    }
    return all;
}

std::string pugixmlText(double value) {
    pugi::xml_document document;
    pugi::xml_attribute attribute = document.append_child("Item").append_attribute("X");
    attribute.set_value(value);
    return attribute.as_string();
}

std::string setDoubleText(double value) {
    pugi::xml_document document;
    pugi::xml_attribute attribute = document.append_child("Item").append_attribute("X");
    pallix::config::setDouble(attribute, value);
    return attribute.as_string();
}

void expectPugixmlTexts() {
    // Twice: once as the value is first formatted, once from the text kept for it.
    for (int round = 0; round < 2; ++round) {
        for (const double value : values()) {
            ASSERT_EQ(setDoubleText(value), pugixmlText(value)) << "round " << round;
        }
    }
}

} // namespace

TEST(DoubleTextTest, GivesPugixmlsTextFirstAndLater) {
    expectPugixmlTexts();
}

// More values than are kept at once: the texts start over, and stay right.
TEST(DoubleTextTest, StaysRightWhenTheTextsStartOver) {
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 5000; ++i) {
            const double value = i * 0.001 - 2.5;
            ASSERT_EQ(setDoubleText(value), pugixmlText(value));
        }
    }
}

// A locale whose decimal point is not "." changes pugixml's text; no text kept from before may
// be given then. The machine need not have such a locale installed: the test compiles de_DE
// from the system's locale sources into a directory of its own and points LOCPATH there
// (every test runs in a process of its own).
TEST(DoubleTextTest, FollowsTheLocalesDecimalPoint) {
    expectPugixmlTexts();
    const pallix::test::TemporaryDirectory locales("pallix-locale");
    const std::string command = "localedef -i de_DE -f UTF-8 " + locales.file("de_DE.UTF-8") +
                                " >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << "localedef could not compile de_DE";
    ASSERT_EQ(::setenv("LOCPATH", locales.path().c_str(), 1), 0);
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr);
    EXPECT_EQ(pugixmlText(0.5), "0,5");
    expectPugixmlTexts();
    std::setlocale(LC_NUMERIC, "C");
    expectPugixmlTexts();
}
