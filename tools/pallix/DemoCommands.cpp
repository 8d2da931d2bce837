// "pallix demo": walks the application's typical road through the library's public interface,
// on the sample files, and prints each step as a person would want to read it.

#include "CloudFormat.h"
#include "Commands.h"
#include "ConfigurationFormat.h"
#include "Directories.h"
#include "Failure.h"
#include "FileNames.h"
#include "ToolOutput.h"

#include "PallixRuntime.h"

#include <QCryptographicHash>
#include <QFile>
#include <QString>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace pallix::tool {

namespace {

struct DemoOptions {
    std::string configDir;
    std::string resourcesDir;
    std::string samplesDir;
};

// Output helpers: a heading per step and a mark per result, in colour on a terminal.
class DemoPrinter {
public:
    void step(const std::string& title) {
        std::cout << '\n'
                  << paint(Colour::Bold, std::to_string(++m_step) + ". " + title, STDOUT_FILENO)
                  << '\n';
    }
    void line(const std::string& text) { std::cout << "   " << text << '\n'; }
    void good(const std::string& text) {
        std::cout << "   " << paint(Colour::Green, "[ok]", STDOUT_FILENO) << ' ' << text << '\n';
    }
    void bad(const std::string& text) {
        ++m_failures;
        std::cout << "   " << paint(Colour::Red, "[!!]", STDOUT_FILENO) << ' ' << text << '\n';
    }
    int failures() const { return m_failures; }

private:
    int m_step = 0;
    int m_failures = 0;
};

// The samples named on the command line, or the installed ones; a usage error when there are
// none.
std::string findSamplesDirectory(const std::string& requested) {
    std::error_code ignored;
    if (!requested.empty()) {
        requireDirectory(requested, "samples");
        if (!std::filesystem::is_regular_file(requested + "/cloud.xml", ignored)) {
            failUsage(requested + ": no sample files (cloud.xml) in the samples directory");
        }
        return requested;
    }
    std::vector<std::string> candidates;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", ignored);
    if (!ignored) {
        candidates.push_back(
            (executable.parent_path().parent_path() / "share/PallixRuntime/samples").string());
    }
    candidates.emplace_back(PALLIX_INSTALLED_SAMPLES_DIR);
    candidates.emplace_back(PALLIX_SOURCE_SAMPLES_DIR);
    for (const std::string& candidate : candidates) {
        if (std::filesystem::is_regular_file(candidate + "/cloud.xml", ignored)) {
            return candidate;
        }
    }
    failUsage("the sample files are not installed; name them with --samples-dir");
}

// Marks a configuration directory as the demo's own.
const char* const kDemoMark = ".pallix-demo";

// The directory the demo works in: the one named, created when it is missing, or a new
// temporary one. Either way a directory that the tool can use, by its canonical name.
std::string prepareConfigDirectory(const std::string& requested) {
    std::string directory = requested;
    if (directory.empty()) {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "pallix-demo-XXXXXX").string();
        if (::mkdtemp(&pattern[0]) == nullptr) {
            failRejected("cannot create a temporary directory in " +
                         std::filesystem::temp_directory_path().string() + " (" +
                         std::strerror(errno) + ")");
        }
        directory = pattern;
    }
    std::error_code error;
    if (!std::filesystem::exists(directory, error) && !error) {
        std::filesystem::create_directories(directory, error);
    }
    if (error) {
        failUsage(directory + ": cannot create the configuration directory (" + error.message() +
                  ")");
    }
    const std::string canonical = std::filesystem::canonical(directory, error).string();
    const std::string used = useConfigDirectory(error ? directory : canonical);
    // The demo changes the configuration of its directory (its data root included) and every
    // store in it, so it works only in a directory of its own: one that was empty, or that
    // holds the mark of an earlier demo. A user's configuration directory is never touched.
    const std::string mark = used + "/" + kDemoMark;
    if (!std::filesystem::exists(mark, error) && !std::filesystem::is_empty(used, error)) {
        failUsage(used + ": holds files that the demo did not write; the demo changes the "
                         "configuration and the stores of its directory, so give it an empty "
                         "or a new one");
    }
    std::ofstream(mark) << "A directory of 'pallix demo', which changes every file in it.\n";
    return used;
}

// In lower-case hexadecimal; empty when the file cannot be read.
std::string md5Of(const std::string& path) {
    QFile file(QString::fromStdString(path));
    return file.open(QIODevice::ReadOnly)
               ? QCryptographicHash::hash(file.readAll(), QCryptographicHash::Md5)
                     .toHex()
                     .toStdString()
               : std::string();
}

std::string coordinates(double longitude, double latitude) {
    return NString::format("%.6f, %.6f", longitude, latitude).toStdString();
}

// The sample reference tables: the cloud document's entry for each, and how the library loads it.
struct ReferenceTable {
    const char* entry;
    const char* file;
    const char* what;
    PRuntimeCloudApplicationHash (PRuntimeCloud::*lookup)() const;
    bool (*load)(const NString& path);
};

const ReferenceTable kTables[] = {
    {format::cloud::kReferenceCpid, "cpid.xml", "chip identifier table",
     &PRuntimeCloud::application_hash_cpid,
     [](const NString& path) { return PRuntime::getInstance()->cpid()->format(path); }},
    {format::cloud::kReferenceCrashCode, "crash.xml", "crash code table",
     &PRuntimeCloud::application_hash_crash_code,
     [](const NString& path) { return PRuntime::getInstance()->crashCode()->format(path); }},
    {format::cloud::kReferenceRestoreCode, "restore-error.xml", "restore error table",
     &PRuntimeCloud::application_hash_restore_code,
     [](const NString& path) {
         return PRuntime::getInstance()->restore()->restoreError()->format(path);
     }},
    {format::cloud::kReferencePluginMapping, "plugin-mapping.xml", "plug-in mapping table",
     &PRuntimeCloud::application_hash_developer_plugin_mapping,
     [](const NString& path) { return PRuntime::getInstance()->pluginMapping()->format(path); }},
};

void initialiseConfiguration(DemoPrinter& out, const std::string& configDir,
                             const std::string& resourcesDir) {
    out.step("Initialise the configuration");
    PRuntimeConfig* config = PRuntime::getInstance()->config();
    config->initialize();
    out.line("configuration directory: " + configDir);
    if (config->newInstall()) {
        out.line(std::string("a new installation: no ") + format::kConfigurationFile +
                 " was there yet");
    } else {
        out.line(config->newUpdate() ? "an existing installation, updated to this version"
                                     : "an existing installation, same version as last time");
    }
    const NString version = config->version();
    std::error_code ignored;
    if (!std::filesystem::exists(resourcesDir + "/" + format::kVersionFile, ignored)) {
        out.bad(std::string("no ") + format::kVersionFile + " in " + resourcesDir +
                ": the running version falls back to " + version.toStdString());
    } else if (version.exist()) {
        out.good("running version " + version.toStdString() + " (from the resources' " +
                 format::kVersionFile + ")");
    } else {
        out.bad("no running version in the resources directory");
    }
    // The data root of the demo lives in its own directory, not in the user's home.
    namespace configuration = format::configuration;
    config->setConfigDirectory(configuration::kDataDirectory,
                               NString(configDir + "/" + configuration::kDataDirectory));
    out.line("data root:        " + config->localRoot().toStdString());
    out.line("firmware cache:   " + config->localFirmwareArchiver().toStdString());
    out.line("downloads:        " + config->localDownload().toStdString());
    out.line("ringtones:        " + config->localRingtoneSave().toStdString());
    out.line("backups:          " +
             config->getConfigDirectory(configuration::kBackupDirectory).toStdString());
}

void loadCloudDocument(DemoPrinter& out, const std::string& samples) {
    out.step("Load the cloud document and compare the reference files with their digests");
    PRuntimeCloud* cloud = PRuntime::getInstance()->cloud();
    if (!cloud->format(NString(samples + "/cloud.xml"))) {
        out.bad("the cloud document " + samples + "/cloud.xml could not be read");
        return;
    }
    out.good("cloud document loaded: " + samples + "/cloud.xml");
    for (const ReferenceTable& table : kTables) {
        const PRuntimeCloudApplicationHash entry = (cloud->*table.lookup)();
        out.line(std::string(table.entry) + ": " + entry.url().toStdString());
        const std::string actual = md5Of(samples + "/" + table.file);
        if (entry.name().exist() &&
            QString::fromStdString(entry.hash().toStdString()).toLower().toStdString() == actual) {
            out.good(std::string(table.file) + " matches its digest " + entry.hash().toStdString());
        } else {
            out.bad(std::string(table.file) + " has MD5 " + actual + ", the document says " +
                    (entry.hash().exist() ? entry.hash().toStdString() : "nothing"));
        }
    }
}

void loadTables(DemoPrinter& out, const std::string& samples) {
    out.step("Load the reference tables");
    for (const ReferenceTable& table : kTables) {
        const std::string path = samples + "/" + table.file;
        if (table.load(NString(path))) {
            out.good(std::string(table.what) + " loaded from " + path);
        } else {
            out.bad(std::string(table.what) + " could not be read from " + path);
        }
    }
}

void identifyDevices(DemoPrinter& out) {
    out.step("Identify devices in recovery mode");
    struct Device {
        unsigned int chip;
        unsigned int board;
        const char* story;
        bool known;
    };
    const Device devices[] = {
        {0x8101, 0x0C, "has a row of its own", true},
        {0x8101, 0x3E, "falls back to the chip's board-00 row", true},
        {0x7777, 0x01, "is not in the table", false},
    };
    for (const Device& device : devices) {
        NDeviceInfoRecovery recovery;
        recovery.setCpid(device.chip);
        recovery.setBdid(device.board);
        PRuntimeInfoCpid row;
        const std::string who =
            NString::format("chip 0x%04X board 0x%02X", device.chip, device.board).toStdString();
        const bool found = PRuntime::getInstance()->cpid()->find(recovery, row);
        if (found != device.known) {
            out.bad(who + ": unexpected answer");
        } else if (found) {
            out.good(who + " (" + device.story + "): " + row.mode().toStdString() + ", " +
                     row.product().toStdString() + ", " + row.network().toStdString() +
                     (row.support() ? ", supported" : ", not supported"));
        } else {
            out.good(who + " (" + device.story + "): unknown device");
        }
    }
}

void explainFailures(DemoPrinter& out) {
    out.step("Explain a failed restore and a crash");
    const long long code = 4013;
    bool explained = false;
    PRuntime::getInstance()->restore()->restoreError()->find(
        code, [&](const PRuntimeInfoRestoreError& row) {
            explained = true;
            out.good("restore error " + std::to_string(row.code()) + ": " +
                     row.describe().toStdString());
            out.line("   solution: " + row.solution().toStdString());
        });
    if (!explained) {
        out.bad("restore error " + std::to_string(code) + " is not in the table");
    }
    const NString failure("AMRestorePerformRecoveryModeRestore failed: device disconnected");
    bool matched = false;
    PRuntime::getInstance()->crashCode()->find(failure, [&](const PRuntimeInfoCrash& row) {
        matched = true;
        out.good("\"" + failure.toStdString() + "\" -> " + row.reason().toStdString());
        out.line("   solution: " + row.solution().toStdString());
    });
    if (!matched) {
        out.bad("no crash row explains \"" + failure.toStdString() + "\"");
    }
    NString mapped;
    if (PRuntime::getInstance()->pluginMapping()->find(NString("16.4.1"), mapped)) {
        out.good("a device on system 16.4.1 gets the developer plug-in package " +
                 mapped.toStdString());
    } else {
        out.bad("system 16.4.1 has no plug-in mapping");
    }
}

void keepStores(DemoPrinter& out, const std::string& configDir) {
    out.step("Keep the local stores");
    PRuntime* root = PRuntime::getInstance();

    // A firmware file the user downloaded earlier, matched by hand to its download address.
    const std::string firmware = configDir + "/Data/Download/iPhone_Demo_17.0_Restore.ipsw";
    std::filesystem::create_directories(configDir + "/Data/Download");
    std::ofstream(firmware, std::ios::binary) << "demo firmware image";
    const NString url("https://updates.example.invalid/iPhone_Demo_17.0_Restore.ipsw");
    root->restore()->customFirmware()->append(url, NString(firmware));
    const NString local = root->restore()->customFirmware()->find(url);
    if (local == NString(firmware)) {
        out.good("firmware address matched to the local file " + local.toStdString());
    } else {
        out.bad("the custom firmware list did not keep the match");
    }

    PRuntimeNotifyItem item;
    item.setID(1001);
    item.setTitle("Firmware 17.0 is available");
    item.setURL("https://updates.example.invalid/notes/17.0");
    item.setIsPopup(true);
    item.setTimestamp(1767225600);
    item.setUserID(42);
    root->notify()->append(1001, item);
    item.setAlreadyRead(true);
    root->notify()->update(1001, item);
    const PRuntimeNotifyItem stored = root->notify()->find(1001);
    if (stored.isAlreadyRead()) {
        out.good("notification 1001 \"" + stored.title().toStdString() +
                 "\" added and marked read");
    } else {
        out.bad("the notification was not marked read");
    }

    root->portbind()->append("usb:0x14100000", "127.0.0.1:27015");
    out.good("port usb:0x14100000 bound to " +
             root->portbind()->find("usb:0x14100000").toStdString());

    NDeviceInfoFactory factory;
    factory.append("SerialNumber", NByteArray("F2LXK0DEMO01", 12));
    factory.append("ModelNumber", NByteArray("MQ9X3", 5));
    const unsigned long long device = 0x000000008101001EULL;
    root->factory()->append(device, factory);
    if (root->factory()->find(device)) {
        out.good("factory information kept for device " +
                 NString::format("%016llX", device).toStdString());
    } else {
        out.bad("the factory information was not kept");
    }
}

void convertAndFormat(DemoPrinter& out) {
    out.step("Convert a coordinate and format sizes and dates");
    PRuntimeLocation* location = PRuntime::getInstance()->location();
    double longitude = 116.397128;
    double latitude = 39.916527;
    out.line("WGS-84: " + coordinates(longitude, latitude));
    location->WGS84_TO_GCJ02(&longitude, &latitude);
    out.line("GCJ-02: " + coordinates(longitude, latitude));
    location->GCJ02_TO_BD09(&longitude, &latitude);
    out.line("BD-09:  " + coordinates(longitude, latitude));
    location->BD09_TO_GCJ02(&longitude, &latitude);
    location->GCJ02_TO_WGS84(&longitude, &latitude);
    out.good("and back to WGS-84: " + coordinates(longitude, latitude) +
             " (the way back is an approximation, within a metre)");

    PRuntimeString* text = PRuntime::getInstance()->string();
    for (unsigned long long bytes : {1023ULL, 1536ULL, 734003200ULL, 6442450944ULL}) {
        out.line(std::to_string(bytes) +
                 " bytes: " + text->stringFromSize(bytes, 2, true).toStdString());
    }
    for (long long seconds : {0LL, 1700000000LL}) {
        out.line(std::to_string(seconds) + " s after the epoch: " +
                 text->secondToString(seconds).toStdString() + " (local date)");
    }
}

void showWrittenFiles(DemoPrinter& out, const std::string& configDir) {
    out.step("What the demo wrote in " + configDir);
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (std::filesystem::recursive_directory_iterator entry(configDir, error), end;
         !error && entry != end; entry.increment(error)) {
        if (entry->is_regular_file(error)) {
            files.push_back(entry->path());
        }
    }
    std::sort(files.begin(), files.end());
    for (const auto& file : files) {
        out.line(file.lexically_relative(configDir).string() + "  (" +
                 std::to_string(std::filesystem::file_size(file, error)) + " bytes)");
    }
}

void runDemo(const DemoOptions& options) {
    // Every directory is checked before anything is created or written.
    const std::string samples = findSamplesDirectory(options.samplesDir);
    const std::string resourcesDir =
        useResourcesDirectory(options.resourcesDir.empty() ? samples : options.resourcesDir);
    const bool temporary = options.configDir.empty();
    const std::string configDir = prepareConfigDirectory(options.configDir);
    NApple::setBackupDirectory(NString(configDir + "/" + format::configuration::kBackupDirectory));

    DemoPrinter out;
    {
        // The demo changes the files of the directory it is given; the tool's own changes
        // there wait for it.
        const DirectoryLock lock(configDir);
        std::cout << "pallix demo: the application's typical road through libPallixRuntime "
                  << PALLIX_VERSION << "\n   samples: " << samples << '\n';
        initialiseConfiguration(out, configDir, resourcesDir);
        loadCloudDocument(out, samples);
        loadTables(out, samples);
        identifyDevices(out);
        explainFailures(out);
        keepStores(out, configDir);
        convertAndFormat(out);
        PRuntime::getInstance()->config()->release();
        showWrittenFiles(out, configDir);
        PRuntime::freeInstance();
    }

    if (temporary) {
        std::error_code ignored;
        std::filesystem::remove_all(configDir, ignored);
        std::cout
            << "\n   (the temporary directory was removed; keep the files with --config-dir)\n";
    }
    const int failures = out.failures();
    std::cout << '\n'
              << (failures == 0 ? std::string("Every step worked.")
                                : std::to_string(failures) +
                                      (failures == 1 ? " check failed." : " checks failed."))
              << '\n';
    // Failed checks are the demo's answer, each reported on its own line.
    exitStatus() = failures == 0 ? kSuccess : kRejected;
}

} // namespace

void registerDemoCommands(CLI::App& app) {
    auto options = std::make_shared<DemoOptions>();
    CLI::App* command =
        app.add_subcommand("demo", "Walk the application's typical road on the sample files");
    command
        ->add_option("--config-dir", options->configDir,
                     "Configuration directory to work in and keep: a new or empty one, or one "
                     "that an earlier demo used (default: a temporary one, removed afterwards)")
        ->type_name("DIR")
        ->check(DirectoryPath());
    command
        ->add_option("--resources-dir", options->resourcesDir,
                     std::string("Resources directory holding ") + format::kVersionFile +
                         " (default: the samples)")
        ->type_name("DIR")
        ->check(DirectoryPath());
    command
        ->add_option("--samples-dir", options->samplesDir,
                     "Directory of the sample files (default: the installed samples)")
        ->type_name("DIR")
        ->check(DirectoryPath());
    finishHelp(*command,
               "0 every step worked; 1 a check failed (marked [!!]); 2 a usage error, or a "
               "directory that is missing (but --config-dir), not a directory, or cannot be read.",
               "pallix demo --config-dir /tmp/pallix-demo");
    command->callback([options] { runDemo(*options); });
}

} // namespace pallix::tool
