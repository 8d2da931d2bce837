#include "Commands.h"
#include "Failure.h"
#include "Suggestion.h"
#include "ToolOutput.h"
#include "Values.h"

#include "NString.h"
#include "PRuntime.h"
#include "PRuntimeLocation.h"
#include "PRuntimeString.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace pallix::tool {

namespace {

// The root is created for one subcommand and freed again when it ends.
struct RootScope {
    PRuntime* root = PRuntime::getInstance();

    RootScope() {
        if (root == nullptr || root->string() == nullptr || root->location() == nullptr) {
            PRuntime::freeInstance();
            failRejected("the runtime root could not be created");
        }
    }
    ~RootScope() { PRuntime::freeInstance(); }
    PRuntimeString& strings() { return *root->string(); }
    PRuntimeLocation& location() { return *root->location(); }
};

std::string toText(const QString& text) {
    return _80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(text).toStdString();
}

const char* const kUsageStatus = "2 a usage error (an argument that is not what it says).";

// ---- size ------------------------------------------------------------------------------------

void registerSize(CLI::App& app) {
    struct Options {
        unsigned long long bytes = 0;
        int precision = 2;
        bool spaced = false;
        bool json = false;
    };
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(
        "size", "Show a byte count as the interface does (base 1024, up to TB). With --json: "
                "{\"bytes\": N, \"text\": TEXT}.");
    command->add_option("BYTES", options->bytes, "Number of bytes")
        ->required()
        ->transform(UnsignedUpTo(ULLONG_MAX, "a byte count"));
    command->add_option("--precision", options->precision, "Decimals from KB on (default 2)")
        ->transform(IntegerIn(0, 17));
    command->add_flag("--spaced", options->spaced, "Put a blank between number and unit");
    addJsonFlag(*command, options->json);
    finishHelp(*command, std::string("0 shown; ") + kUsageStatus, "pallix size 1536 --precision 1");
    command->callback([options] {
        RootScope scope;
        const std::string text = toText(
            scope.strings().stringFromSize(options->bytes, options->precision, options->spaced));
        printAnswer(options->json, {{"bytes", options->bytes}, {"text", text}}, text);
    });
}

// ---- coord -----------------------------------------------------------------------------------

enum class Datum { Wgs84, Gcj02, Bd09 };

const std::vector<std::string>& datumNames() {
    static const std::vector<std::string> names{"wgs84", "gcj02", "bd09"};
    return names;
}

Datum parseDatum(const std::string& text) {
    for (std::size_t i = 0; i < datumNames().size(); ++i) {
        if (datumNames()[i] == text) {
            return static_cast<Datum>(i);
        }
    }
    failUsage("unknown datum: " + text + " (wgs84, gcj02 or bd09)" +
              didYouMean(text, datumNames()));
}

// The conversions have no documented answer for a NaN or an infinity: such input is refused.
double parseDegrees(const char* what, const std::string& text) {
    const std::optional<double> value = parseFiniteNumber(text);
    if (!value) {
        failUsage(std::string("not a ") + what + ": '" + text + "' (a finite number of degrees)");
    }
    return *value;
}

// Every way between the three datums goes through GCJ-02, the one both shifts share.
// The way back to WGS-84 is the library's one-step inverse, or with `exactInverse` the
// iterative one that lands on the point whose GCJ-02 image was given.
void convert(const PRuntimeLocation& location, Datum from, Datum to, bool exactInverse,
             double& longitude, double& latitude) {
    if (from == to) {
        return;
    }
    if (from == Datum::Wgs84) {
        location.WGS84_TO_GCJ02(&longitude, &latitude);
    } else if (from == Datum::Bd09) {
        location.BD09_TO_GCJ02(&longitude, &latitude);
    }
    if (to == Datum::Wgs84 && exactInverse) {
        location.GCJ02_TO_WGS84_EXACT(&longitude, &latitude);
    } else if (to == Datum::Wgs84) {
        location.GCJ02_TO_WGS84(&longitude, &latitude);
    } else if (to == Datum::Bd09) {
        location.GCJ02_TO_BD09(&longitude, &latitude);
    }
}

std::string formatDegrees(double value, bool exact) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, exact ? "%.17g" : "%.6f", value);
    return buffer;
}

void registerCoord(CLI::App& app) {
    struct Options {
        std::string from;
        std::string to;
        std::string longitude;
        std::string latitude;
        bool exact = false;
        bool exactInverse = false;
        bool json = false;
    };
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(
        "coord", "Convert a map coordinate between wgs84, gcj02 and bd09 (longitude first, in "
                 "finite degrees). With --json: {\"from\", \"to\", \"longitude\", \"latitude\"}, "
                 "the numbers at full precision.");
    command->add_option("FROM", options->from, "Datum of the input: wgs84, gcj02 or bd09")
        ->required();
    command->add_option("TO", options->to, "Datum of the output: wgs84, gcj02 or bd09")->required();
    command->add_option("LNG", options->longitude, "Longitude in degrees")->required();
    command->add_option("LAT", options->latitude, "Latitude in degrees")->required();
    command->add_flag("--exact", options->exact,
                      "Print every digit (17 significant) instead of 6 decimals");
    command->add_flag("--exact-inverse", options->exactInverse,
                      "Into wgs84: invert the gcj02 shift exactly (to 1e-9 degrees and better) "
                      "instead of in one step, which can miss by metres");
    addJsonFlag(*command, options->json);
    finishHelp(*command, std::string("0 converted; ") + kUsageStatus,
               "pallix coord wgs84 gcj02 116.397128 39.916527");
    command->callback([options] {
        const Datum source = parseDatum(options->from);
        const Datum target = parseDatum(options->to);
        if (options->exactInverse && (target != Datum::Wgs84 || source == Datum::Wgs84)) {
            failUsage("--exact-inverse is the way back into wgs84 from gcj02 or bd09");
        }
        double longitude = parseDegrees("longitude", options->longitude);
        double latitude = parseDegrees("latitude", options->latitude);
        RootScope scope;
        convert(scope.location(), source, target, options->exactInverse, longitude, latitude);
        printAnswer(options->json,
                    {{"from", options->from},
                     {"to", options->to},
                     {"longitude", longitude},
                     {"latitude", latitude}},
                    formatDegrees(longitude, options->exact) + ' ' +
                        formatDegrees(latitude, options->exact));
    });
}

// ---- date ------------------------------------------------------------------------------------

void registerDate(CLI::App& app) {
    struct Options {
        long long seconds = 0;
        bool json = false;
    };
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(
        "date", "Show the local date of an instant and the start of its local day. The date "
                "helpers count unsigned 32-bit seconds: instants from 0 (1970-01-01) to "
                "4294967295 (2106-02-07). 1970-01-01 starts at 0 in every zone; a day that began "
                "before it, or whose midnight a clock change skips, has no start they can "
                "count (dayStart null). With --json: {\"seconds\", \"date\", \"dayStart\"}.");
    command->add_option("SECONDS", options->seconds, "Seconds since 1970-01-01 00:00 UTC")
        ->required()
        ->transform(IntegerIn(0, UINT32_MAX,
                              "the date helpers count unsigned 32-bit seconds, from 1970-01-01 to "
                              "2106-02-07"));
    addJsonFlag(*command, options->json);
    finishHelp(*command, std::string("0 shown; ") + kUsageStatus, "pallix date 1704139200 --json");
    command->callback([options] {
        RootScope scope;
        const std::string date = toText(scope.strings().secondToString(options->seconds));
        const long long dayStart = scope.strings().secondToDay(options->seconds);
        // The helpers answer their error value for a local day that began before the epoch
        // (west of UTC, the first hours of 1970) and for one whose midnight a clock change
        // skips; 1970-01-01 itself starts at 0 in every zone.
        if (dayStart == UINT32_MAX) {
            const std::string why = date < "1970-01-01"
                                        ? "the day began before 0, 1970-01-01 00:00 UTC"
                                        : "a clock change skips the day's midnight";
            printAnswer(options->json,
                        {{"seconds", options->seconds}, {"date", date}, {"dayStart", nullptr}},
                        "date: " + date +
                            "\nday starts at: none that the date helpers can count (" + why + ")");
            return;
        }
        printAnswer(options->json,
                    {{"seconds", options->seconds}, {"date", date}, {"dayStart", dayStart}},
                    "date: " + date + "\nday starts at: " + std::to_string(dayStart));
    });
}

// ---- password --------------------------------------------------------------------------------

void registerPassword(CLI::App& app) {
    struct Options {
        std::string text;
        bool json = false;
    };
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(
        "password", "Check a password against the strength rule: 6 to 32 UTF-16 units (a "
                    "character beyond U+FFFF, such as most emoji, counts as two), not only "
                    "digits, not only ASCII letters, not only other characters. With --json: "
                    "{\"accepted\": true or false}.");
    command->add_option("TEXT", options->text, "The password, UTF-8")->required();
    addJsonFlag(*command, options->json);
    finishHelp(*command, std::string("0 accepted; 1 rejected; ") + kUsageStatus,
               "pallix password 'abc123'");
    command->callback([options] {
        RootScope scope;
        const bool accepted = scope.strings().passwordMatch(
            _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(NString(options->text)));
        printAnswer(options->json, {{"accepted", accepted}}, accepted ? "accepted" : "rejected");
        // A rejection is the command's answer, not an error: it prints no message.
        exitStatus() = accepted ? kSuccess : kRejected;
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
