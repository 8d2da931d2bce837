#pragma once

#include "TemporaryDirectory.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <string>
#include <vector>

namespace pallix::test {

// A configuration that counts the calls the facade makes to itself through the virtual table.
// Each counted operation still does its work.
class CountingConfig : public PRuntimeConfig {
public:
    void save() override;
    void load_new() override;
    void load_old() override;
    void check_disk() override;
    void _set_setting_status(const NString& name, bool status) override;
    NString getConfigDirectory(const NString& name) override;
    NString localRoot() override;
    NString localFirmwareArchiver() override;
    NString localNormal() override;

    int saves = 0;
    // Every counted call in order, e.g. "load_new", "save", "_set_setting_status:Name".
    std::vector<std::string> calls;
};

// Every configuration test runs against directories of its own: the configuration, the
// resources, the home directory (HOME) and the platform's backup directory all live in one
// temporary folder, and the record is emptied before the test.
class ConfigTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Points the application's configuration directory somewhere else (it need not exist).
    void useConfigDirectory(const std::string& directory);

    std::string configDirectory() const { return m_configDirectory; }
    std::string currentFile() const { return m_configDirectory + "/configure.xml"; }
    std::string legacyFile() const { return m_configDirectory + "/Config.xml"; }
    std::string resourcesDirectory() const { return m_root.file("resources"); }
    std::string homeDirectory() const { return m_root.file("home"); }
    std::string backupDirectory() const { return m_root.file("backup"); }
    std::string scratch(const std::string& name) const { return m_root.file(name); }
    // The data directory that initialize() gives by default.
    std::string defaultDataDirectory() const { return homeDirectory() + "/TolVaneData"; }

    void writeCurrent(const std::string& xml) const;
    void writeLegacy(const std::string& xml) const;
    // A version file in the resources directory carrying `version`.
    void writeVersion(const std::string& version) const;
    std::string readCurrent() const;

    // The written configuration file, parsed.
    pugi::xml_node loadWritten(pugi::xml_document& document) const;

    // The root's configuration component.
    PRuntimeConfig* config() const;

    _PALLIX_RUNTIME_CONFIG& record() const { return _globalFrameworkConfig; }

private:
    TemporaryDirectory m_root{"pallix-config"};
    std::string m_configDirectory;
};

// The names of an element's children, in document order.
std::vector<std::string> childNames(const pugi::xml_node& node);
// The names of an element's attributes, in document order.
std::vector<std::string> attributeNames(const pugi::xml_node& node);

bool exists(const std::string& path);
bool isDirectory(const std::string& path);
// The permission bits of a path (0 when it does not exist).
unsigned int permissions(const std::string& path);

// The custom backups, file favourites and places of a list, as the traversals report them.
std::vector<std::string> customBackups(PRuntimeConfig& config);
std::vector<std::pair<std::string, bool>> fileFavourites(PRuntimeConfig& config);
struct Place {
    double x;
    double y;
    std::string location;
    friend bool operator==(const Place& a, const Place& b) {
        return a.x == b.x && a.y == b.y && a.location == b.location;
    }
};
std::vector<Place> virtualLocations(PRuntimeConfig& config);
std::vector<Place> locationFavourites(PRuntimeConfig& config);

void PrintTo(const Place& place, std::ostream* out);

} // namespace pallix::test
