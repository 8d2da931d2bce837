#include "ToolRunner.h"

#include "PRuntimeLocation.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

using pallix::test::runTool;
using pallix::test::ToolResult;
using Json = nlohmann::json;

namespace {

// The tool's environment without a time zone of the caller's: the tests give their own.
ToolResult runInZone(const std::vector<std::string>& arguments, const std::string& zone) {
    ::unsetenv("TZ");
    return runTool(arguments, {"TZ=" + zone});
}

std::string exact(double longitude, double latitude) {
    char buffer[96];
    std::snprintf(buffer, sizeof buffer, "%.17g %.17g\n", longitude, latitude);
    return buffer;
}

} // namespace

// --- size -----------------------------------------------------------------------------------

TEST(ToolSize, ShowsBytesBelowOneKilobyte) {
    const ToolResult result = runTool({"size", "1023"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "1023Byte\n");
}

TEST(ToolSize, DefaultsToTwoDecimals) {
    const ToolResult result = runTool({"size", "1024"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "1.00KB\n");
}

TEST(ToolSize, PrecisionAndSpacing) {
    EXPECT_EQ(runTool({"size", "1536", "--precision", "1"}).output, "1.5KB\n");
    EXPECT_EQ(runTool({"size", "1024", "--spaced"}).output, "1.00 KB\n");
    EXPECT_EQ(runTool({"size", "1048576", "--precision", "0"}).output, "1MB\n");
    EXPECT_EQ(runTool({"size", "1125899906842624"}).output, "1024.00TB\n");
}

TEST(ToolSize, LargestCount) {
    const ToolResult result = runTool({"size", "18446744073709551615", "--precision", "3"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "16777216.000TB\n");
}

TEST(ToolSize, RejectsWhatIsNotAByteCount) {
    for (const char* text : {"abc", "-1", "1.5", "18446744073709551616", ""}) {
        const ToolResult result = runTool({"size", text});
        EXPECT_EQ(result.status, 2) << text;
        EXPECT_EQ(result.output, "") << text;
        EXPECT_NE(result.errors.find("is not a whole number from 0 to 18446744073709551615 (a "
                                     "byte count)"),
                  std::string::npos)
            << result.errors;
    }
}

// CLI11 reads a leading 0 as octal; the tool's numbers are decimal.
TEST(ToolSize, LeadingZerosAreDecimal) {
    const ToolResult result = runTool({"size", "01536", "--precision", "010"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "1.5000000000KB\n");
}

TEST(ToolSize, RejectsAPrecisionOutsideZeroToSeventeen) {
    for (const char* precision : {"-1", "18", "2.5", "two"}) {
        const ToolResult result = runTool({"size", "1536", "--precision", precision});
        EXPECT_EQ(result.status, 2) << precision;
        EXPECT_EQ(result.output, "") << precision;
        EXPECT_NE(result.errors.find("from 0 to 17"), std::string::npos) << result.errors;
    }
    EXPECT_EQ(runTool({"size", "1536", "--precision", "17"}).status, 0);
}

TEST(ToolSize, Json) {
    const ToolResult result = runTool({"size", "18446744073709551615", "--json"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output,
              "{\n  \"bytes\": 18446744073709551615,\n  \"text\": \"16777216.00TB\"\n}\n");
}

TEST(ToolSize, NeedsTheByteCount) {
    const ToolResult result = runTool({"size"});
    EXPECT_NE(result.status, 0);
    EXPECT_NE(result.errors.find("BYTES"), std::string::npos) << result.errors;
}

// --- coord ------------------------------------------------------------------------------------

TEST(ToolCoord, WgsToGcjAsTheLibraryConverts) {
    double lng = 116.4;
    double lat = 39.9;
    PRuntimeLocation().WGS84_TO_GCJ02(&lng, &lat);
    const ToolResult result = runTool({"coord", "wgs84", "gcj02", "116.4", "39.9", "--exact"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, exact(lng, lat));
}

TEST(ToolCoord, SixDecimalsByDefault) {
    const ToolResult result = runTool({"coord", "gcj02", "bd09", "0", "0"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "0.006500 0.006000\n");
}

TEST(ToolCoord, EveryPairOfDatums) {
    const PRuntimeLocation location;
    struct Way {
        const char* from;
        const char* to;
        void (*convert)(const PRuntimeLocation&, double&, double&);
    };
    const Way ways[] = {
        {"wgs84", "gcj02",
         [](const PRuntimeLocation& l, double& x, double& y) { l.WGS84_TO_GCJ02(&x, &y); }},
        {"gcj02", "wgs84",
         [](const PRuntimeLocation& l, double& x, double& y) { l.GCJ02_TO_WGS84(&x, &y); }},
        {"gcj02", "bd09",
         [](const PRuntimeLocation& l, double& x, double& y) { l.GCJ02_TO_BD09(&x, &y); }},
        {"bd09", "gcj02",
         [](const PRuntimeLocation& l, double& x, double& y) { l.BD09_TO_GCJ02(&x, &y); }},
        {"wgs84", "bd09",
         [](const PRuntimeLocation& l, double& x, double& y) {
             l.WGS84_TO_GCJ02(&x, &y);
             l.GCJ02_TO_BD09(&x, &y);
         }},
        {"bd09", "wgs84",
         [](const PRuntimeLocation& l, double& x, double& y) {
             l.BD09_TO_GCJ02(&x, &y);
             l.GCJ02_TO_WGS84(&x, &y);
         }},
        {"wgs84", "wgs84", [](const PRuntimeLocation&, double&, double&) {}},
        {"bd09", "bd09", [](const PRuntimeLocation&, double&, double&) {}},
    };
    for (const Way& way : ways) {
        double lng = 121.4737;
        double lat = 31.2304;
        way.convert(location, lng, lat);
        const ToolResult result =
            runTool({"coord", way.from, way.to, "121.4737", "31.2304", "--exact"});
        EXPECT_EQ(result.status, 0) << way.from << " " << way.to << ": " << result.errors;
        EXPECT_EQ(result.output, exact(lng, lat)) << way.from << " " << way.to;
    }
}

TEST(ToolCoord, ExactInverseLandsWhereTheForwardShiftStarted) {
    PRuntimeLocation location;
    double lng = 116.397128;
    double lat = 39.916527;
    location.WGS84_TO_GCJ02(&lng, &lat);
    char longitude[32];
    char latitude[32];
    std::snprintf(longitude, sizeof longitude, "%.17g", lng);
    std::snprintf(latitude, sizeof latitude, "%.17g", lat);

    const ToolResult result =
        runTool({"coord", "gcj02", "wgs84", longitude, latitude, "--exact-inverse", "--json"});
    EXPECT_EQ(result.status, 0) << result.errors;
    const Json answer = Json::parse(result.output);
    EXPECT_NEAR(answer["longitude"].get<double>(), 116.397128, 1e-9);
    EXPECT_NEAR(answer["latitude"].get<double>(), 39.916527, 1e-9);
    double exactLng = lng;
    double exactLat = lat;
    location.GCJ02_TO_WGS84_EXACT(&exactLng, &exactLat);
    EXPECT_EQ(answer["longitude"].get<double>(), exactLng);
    EXPECT_EQ(answer["latitude"].get<double>(), exactLat);

    // Without it the one-step inverse answers, metres away.
    const ToolResult oneStep = runTool({"coord", "gcj02", "wgs84", longitude, latitude, "--json"});
    const Json approximate = Json::parse(oneStep.output);
    EXPECT_GT(std::fabs(approximate["longitude"].get<double>() - 116.397128) +
                  std::fabs(approximate["latitude"].get<double>() - 39.916527),
              1e-7);
}

TEST(ToolCoord, ExactInverseIsOnlyTheWayIntoWgs84) {
    for (const auto& way : std::vector<std::pair<std::string, std::string>>{
             {"wgs84", "gcj02"}, {"gcj02", "bd09"}, {"wgs84", "wgs84"}}) {
        const ToolResult result =
            runTool({"coord", way.first, way.second, "116.4", "39.9", "--exact-inverse"});
        EXPECT_EQ(result.status, 2) << way.first << " " << way.second;
        EXPECT_NE(result.errors.find("--exact-inverse"), std::string::npos) << result.errors;
    }
    EXPECT_EQ(runTool({"coord", "bd09", "wgs84", "116.4", "39.9", "--exact-inverse"}).status, 0);
}

TEST(ToolCoord, PointsOutsideTheRegionPassUnchanged) {
    const ToolResult result = runTool({"coord", "wgs84", "gcj02", "-73.9857", "40.7484"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "-73.985700 40.748400\n");
}

TEST(ToolCoord, RefusesWhatIsNotAFiniteNumberOfDegrees) {
    // strtod would read "0x10" as sixteen; degrees are decimal.
    for (const char* number :
         {"nan", "inf", "infinity", "1e999", "0x", " 1", "0x10", "+1", "1,5"}) {
        ToolResult result = runTool({"coord", "gcj02", "bd09", number, "0"});
        EXPECT_EQ(result.status, 2) << number;
        EXPECT_EQ(result.output, "") << number;
        EXPECT_NE(result.errors.find("not a longitude"), std::string::npos) << result.errors;
        EXPECT_NE(result.errors.find("finite number of degrees"), std::string::npos)
            << result.errors;
        result = runTool({"coord", "gcj02", "bd09", "0", number});
        EXPECT_EQ(result.status, 2) << number;
        EXPECT_NE(result.errors.find("not a latitude"), std::string::npos) << result.errors;
    }
}

TEST(ToolCoord, Json) {
    double lng = 116.4;
    double lat = 39.9;
    PRuntimeLocation().WGS84_TO_GCJ02(&lng, &lat);
    const ToolResult result = runTool({"coord", "wgs84", "gcj02", "116.4", "39.9", "--json"});
    EXPECT_EQ(result.status, 0) << result.errors;
    const auto document = nlohmann::json::parse(result.output);
    EXPECT_EQ(document["from"], "wgs84");
    EXPECT_EQ(document["to"], "gcj02");
    EXPECT_EQ(document["longitude"].get<double>(), lng);
    EXPECT_EQ(document["latitude"].get<double>(), lat);
}

TEST(ToolCoord, RejectsAnUnknownDatum) {
    const ToolResult result = runTool({"coord", "mercator", "gcj02", "116.4", "39.9"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_NE(result.errors.find("unknown datum: mercator"), std::string::npos) << result.errors;
    EXPECT_EQ(runTool({"coord", "wgs84", "WGS84", "1", "2"}).status, 2);
}

TEST(ToolCoord, SuggestsTheDatumThatWasMeant) {
    const ToolResult result = runTool({"coord", "wgs84", "gcj2", "1", "2"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.errors.find("did you mean 'gcj02'?"), std::string::npos) << result.errors;
}

TEST(ToolCoord, RejectsWhatIsNotANumber) {
    ToolResult result = runTool({"coord", "wgs84", "gcj02", "east", "39.9"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.errors.find("not a longitude: 'east'"), std::string::npos) << result.errors;
    result = runTool({"coord", "wgs84", "gcj02", "116.4", "39.9N"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.errors.find("not a latitude: '39.9N'"), std::string::npos) << result.errors;
}

// --- date -------------------------------------------------------------------------------------

TEST(ToolDate, EpochInUtc) {
    const ToolResult result = runInZone({"date", "0"}, "UTC");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "date: 1970-01-01\nday starts at: 0\n");
}

TEST(ToolDate, WestOfUtc) {
    // 2024-07-05 03:30 UTC is 2024-07-04 23:30 in New York; that day began at 04:00 UTC.
    const ToolResult result = runInZone({"date", "1720150200"}, "America/New_York");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "date: 2024-07-04\nday starts at: 1720065600\n");
}

TEST(ToolDate, EastOfUtc) {
    // 2024-01-01 20:00 UTC is 2024-01-02 04:00 in Shanghai; that day began at 16:00 UTC.
    const ToolResult result = runInZone({"date", "1704139200"}, "Asia/Shanghai");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "date: 2024-01-02\nday starts at: 1704124800\n");
}

TEST(ToolDate, LastInstantOfTheHelpersRange) {
    const ToolResult result = runInZone({"date", "4294967295"}, "UTC");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "date: 2106-02-07\nday starts at: 4294944000\n");
}

TEST(ToolDate, RefusesInstantsOutsideTheHelpersRange) {
    for (const char* seconds : {"-1", "4294967296", "-4294967296"}) {
        const ToolResult result = runInZone({"date", seconds}, "UTC");
        EXPECT_EQ(result.status, 2) << seconds;
        EXPECT_EQ(result.output, "") << seconds;
        EXPECT_NE(result.errors.find("from 0 to 4294967295 (the date helpers count unsigned 32-bit "
                                     "seconds, from 1970-01-01 to 2106-02-07)"),
                  std::string::npos)
            << result.errors;
    }
}

TEST(ToolDate, DayStartsTheHelpersCannotCount) {
    struct Case {
        const char* zone;
        const char* seconds;
        const char* output;
    };
    const Case cases[] = {
        // The epoch is 1969-12-31 19:00 in New York: that day began before the helpers' range.
        {"America/New_York", "0",
         "date: 1969-12-31\nday starts at: none that the date helpers can count (the day began "
         "before 0, 1970-01-01 00:00 UTC)\n"},
        // Sao Paulo moved its clocks from 00:00 to 01:00 on 2018-11-04: no midnight that day.
        {"America/Sao_Paulo", "1541340000",
         "date: 2018-11-04\nday starts at: none that the date helpers can count (a clock change "
         "skips the day's midnight)\n"},
    };
    for (const Case& day : cases) {
        ToolResult result = runInZone({"date", day.seconds}, day.zone);
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_EQ(result.output, day.output);
        result = runInZone({"date", day.seconds, "--json"}, day.zone);
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_TRUE(result.output.find("\"dayStart\": null") != std::string::npos) << result.output;
    }
    // Local midnight of 1970-01-01 in Shanghai was before the epoch too; the helpers take 0.
    const ToolResult east = runInZone({"date", "0", "--json"}, "Asia/Shanghai");
    EXPECT_EQ(east.output, "{\n  \"seconds\": 0,\n  \"date\": \"1970-01-01\",\n"
                           "  \"dayStart\": 0\n}\n");
}

TEST(ToolDate, Json) {
    const ToolResult result = runInZone({"date", "1704139200", "--json"}, "Asia/Shanghai");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "{\n  \"seconds\": 1704139200,\n  \"date\": \"2024-01-02\",\n"
                             "  \"dayStart\": 1704124800\n}\n");
}

TEST(ToolDate, RejectsWhatIsNotANumber) {
    for (const char* text : {"yesterday", "12.5", "99999999999999999999"}) {
        const ToolResult result = runInZone({"date", text}, "UTC");
        EXPECT_EQ(result.status, 2) << text;
        EXPECT_NE(result.errors.find("is not a whole number from 0 to 4294967295 (the date "
                                     "helpers count unsigned 32-bit seconds"),
                  std::string::npos)
            << result.errors;
    }
}

TEST(ToolDate, LeadingZerosAreDecimal) {
    const ToolResult result = runInZone({"date", "010", "--json"}, "UTC");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(result.output.find("\"seconds\": 10,") != std::string::npos) << result.output;
}

// --- password ---------------------------------------------------------------------------------

TEST(ToolPassword, AcceptsAMixedPassword) {
    const ToolResult result = runTool({"password", "abc123"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "accepted\n");
}

TEST(ToolPassword, RejectsWithStatusOne) {
    for (const char* text : {"123456", "abcdef", "!!!!!!", "a1", "密码密码密码"}) {
        const ToolResult result = runTool({"password", text});
        EXPECT_EQ(result.status, 1) << text;
        EXPECT_EQ(result.output, "rejected\n") << text;
    }
}

TEST(ToolPassword, Json) {
    ToolResult result = runTool({"password", "abc123", "--json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "{\n  \"accepted\": true\n}\n");
    result = runTool({"password", "123456", "--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "{\n  \"accepted\": false\n}\n");
    EXPECT_EQ(result.errors, "");
}

TEST(ToolPassword, CountsUtf16UnitsAsItsHelpSays) {
    // Four characters, two of them beyond U+FFFF: six UTF-16 units, so long enough.
    EXPECT_EQ(runTool({"password", "ab\xF0\x9F\x98\x80\xF0\x9F\x98\x80"}).output, "accepted\n");
    EXPECT_EQ(runTool({"password", "a\xF0\x9F\x98\x80\xF0\x9F\x98\x80"}).output, "rejected\n");
    EXPECT_NE(runTool({"password", "--help"}).output.find("6 to 32 UTF-16 units"),
              std::string::npos);
}

TEST(ToolPassword, ReadsTheTextAsUtf8) {
    EXPECT_EQ(runTool({"password", "密码abcd"}).output, "accepted\n");
    // Six characters, but fourteen bytes: the rule counts UTF-16 units, not bytes.
    EXPECT_EQ(runTool({"password", "密码密码a1"}).output, "accepted\n");
    EXPECT_EQ(runTool({"password", std::string(32, 'a') + "1"}).output, "rejected\n");
}

// --- help -------------------------------------------------------------------------------------

TEST(ToolUtilityHelp, EveryHelpGivesTheExitStatusesAndEndsWithAnExample) {
    for (const char* command : {"size", "coord", "date", "password"}) {
        const ToolResult result = runTool({command, "--help"});
        EXPECT_EQ(result.status, 0) << command;
        const auto example = result.output.find("\nExample:\n  pallix ");
        const auto statuses = result.output.find("\nExit status: 0 ");
        EXPECT_NE(example, std::string::npos) << result.output;
        EXPECT_NE(statuses, std::string::npos) << result.output;
        EXPECT_LT(statuses, example) << command;
    }
}
