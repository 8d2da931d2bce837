#include "Commands.h"
#include "ToolOutput.h"

#include "NString.h"
#include "PRuntime.h"
#include "PRuntimeLocation.h"
#include "PRuntimeString.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

namespace pallix::tool {

namespace {

// The root is created for one subcommand and freed again when it ends.
struct RootScope {
    PRuntime* root = PRuntime::getInstance();
    ~RootScope() { PRuntime::freeInstance(); }
};

std::string toText(const QString& text) {
    return _80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(text).toStdString();
}

// A whole decimal number without sign, within unsigned long long.
bool parseBytes(const std::string& text, unsigned long long& value) {
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) {
        return false;
    }
    errno = 0;
    char* end = nullptr;
    value = std::strtoull(text.c_str(), &end, 10);
    return errno == 0 && *end == '\0';
}

bool parseSeconds(const std::string& text, long long& value) {
    if (text.empty()) {
        return false;
    }
    errno = 0;
    char* end = nullptr;
    value = std::strtoll(text.c_str(), &end, 10);
    return errno == 0 && end != text.c_str() && *end == '\0';
}

// Any number strtod reads, "nan" and "inf" included: the conversions have answers for them.
bool parseDegrees(const std::string& text, double& value) {
    if (text.empty()) {
        return false;
    }
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return end != text.c_str() && *end == '\0';
}

enum class Datum { Wgs84, Gcj02, Bd09 };

bool parseDatum(const std::string& text, Datum& datum) {
    if (text == "wgs84") {
        datum = Datum::Wgs84;
    } else if (text == "gcj02") {
        datum = Datum::Gcj02;
    } else if (text == "bd09") {
        datum = Datum::Bd09;
    } else {
        return false;
    }
    return true;
}

// Every way between the three datums goes through GCJ-02, the one both shifts share.
void convert(const PRuntimeLocation& location, Datum from, Datum to, double& longitude,
             double& latitude) {
    if (from == to) {
        return;
    }
    if (from == Datum::Wgs84) {
        location.WGS84_TO_GCJ02(&longitude, &latitude);
    } else if (from == Datum::Bd09) {
        location.BD09_TO_GCJ02(&longitude, &latitude);
    }
    if (to == Datum::Wgs84) {
        location.GCJ02_TO_WGS84(&longitude, &latitude);
    } else if (to == Datum::Bd09) {
        location.GCJ02_TO_BD09(&longitude, &latitude);
    }
}

std::string formatDegrees(double value, bool exact) {
    if (std::isnan(value)) {
        return "nan"; // printf would show the sign bit of a NaN ("-nan")
    }
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, exact ? "%.17g" : "%.6f", value);
    return buffer;
}

void registerSize(CLI::App& app) {
    CLI::App* command = app.add_subcommand("size", "Show a byte count as the interface does");
    auto bytes = std::make_shared<std::string>();
    auto precision = std::make_shared<int>(2);
    auto spaced = std::make_shared<bool>(false);
    command->add_option("BYTES", *bytes, "Number of bytes")->required();
    command->add_option("--precision", *precision, "Decimals from KB on (default 2)");
    command->add_flag("--spaced", *spaced, "Put a blank between number and unit");
    command->callback([bytes, precision, spaced] {
        unsigned long long value = 0;
        if (!parseBytes(*bytes, value)) {
            reportError("not a byte count: " + *bytes);
            exitStatus() = 2;
            return;
        }
        RootScope scope;
        PRuntimeString* strings = scope.root != nullptr ? scope.root->string() : nullptr;
        if (strings == nullptr) {
            reportError("the runtime root could not be created");
            exitStatus() = 1;
            return;
        }
        std::cout << toText(strings->stringFromSize(value, *precision, *spaced)) << '\n';
    });
}

void registerCoord(CLI::App& app) {
    CLI::App* command =
        app.add_subcommand("coord", "Convert a map coordinate between wgs84, gcj02 and bd09");
    auto from = std::make_shared<std::string>();
    auto to = std::make_shared<std::string>();
    auto longitude = std::make_shared<std::string>();
    auto latitude = std::make_shared<std::string>();
    auto exact = std::make_shared<bool>(false);
    command->add_option("FROM", *from, "Datum of the input: wgs84, gcj02 or bd09")->required();
    command->add_option("TO", *to, "Datum of the output: wgs84, gcj02 or bd09")->required();
    command->add_option("LNG", *longitude, "Longitude in degrees")->required();
    command->add_option("LAT", *latitude, "Latitude in degrees")->required();
    command->add_flag("--exact", *exact,
                      "Print every digit (17 significant) instead of 6 decimals");
    command->callback([from, to, longitude, latitude, exact] {
        Datum source = Datum::Wgs84;
        Datum target = Datum::Wgs84;
        double lng = 0.0;
        double lat = 0.0;
        if (!parseDatum(*from, source)) {
            reportError("unknown datum: " + *from + " (expected wgs84, gcj02 or bd09)");
            exitStatus() = 2;
            return;
        }
        if (!parseDatum(*to, target)) {
            reportError("unknown datum: " + *to + " (expected wgs84, gcj02 or bd09)");
            exitStatus() = 2;
            return;
        }
        if (!parseDegrees(*longitude, lng)) {
            reportError("not a longitude: " + *longitude);
            exitStatus() = 2;
            return;
        }
        if (!parseDegrees(*latitude, lat)) {
            reportError("not a latitude: " + *latitude);
            exitStatus() = 2;
            return;
        }
        RootScope scope;
        PRuntimeLocation* location = scope.root != nullptr ? scope.root->location() : nullptr;
        if (location == nullptr) {
            reportError("the runtime root could not be created");
            exitStatus() = 1;
            return;
        }
        convert(*location, source, target, lng, lat);
        std::cout << formatDegrees(lng, *exact) << ' ' << formatDegrees(lat, *exact) << '\n';
    });
}

void registerDate(CLI::App& app) {
    CLI::App* command = app.add_subcommand(
        "date", "Show the local date of an instant and the start of its local day");
    auto seconds = std::make_shared<std::string>();
    command->add_option("SECONDS", *seconds, "Seconds since 1970-01-01 00:00 UTC")->required();
    command->callback([seconds] {
        long long value = 0;
        if (!parseSeconds(*seconds, value)) {
            reportError("not a number of seconds: " + *seconds);
            exitStatus() = 2;
            return;
        }
        RootScope scope;
        PRuntimeString* strings = scope.root != nullptr ? scope.root->string() : nullptr;
        if (strings == nullptr) {
            reportError("the runtime root could not be created");
            exitStatus() = 1;
            return;
        }
        std::cout << "date: " << toText(strings->secondToString(value)) << '\n'
                  << "day starts at: " << strings->secondToDay(value) << '\n';
    });
}

void registerPassword(CLI::App& app) {
    CLI::App* command = app.add_subcommand(
        "password", "Check a password against the strength rule (exit status 1 when rejected)");
    auto text = std::make_shared<std::string>();
    command->add_option("TEXT", *text, "The password, UTF-8")->required();
    command->callback([text] {
        RootScope scope;
        PRuntimeString* strings = scope.root != nullptr ? scope.root->string() : nullptr;
        if (strings == nullptr) {
            reportError("the runtime root could not be created");
            exitStatus() = 1;
            return;
        }
        const bool accepted = strings->passwordMatch(
            _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(NString(text->c_str(), text->size())));
        std::cout << (accepted ? "accepted" : "rejected") << '\n';
        exitStatus() = accepted ? 0 : 1;
    });
}

} // namespace

// "pallix size", "pallix coord", "pallix date", "pallix password": the text and coordinate
// helpers from the command line.
void registerUtilityCommands(CLI::App& app) {
    registerSize(app);
    registerCoord(app);
    registerDate(app);
    registerPassword(app);
}

} // namespace pallix::tool
