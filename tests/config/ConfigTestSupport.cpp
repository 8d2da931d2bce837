#include "ConfigTestSupport.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <ostream>

namespace pallix::test {

void CountingConfig::save() {
    ++saves;
    calls.push_back("save");
    PRuntimeConfig::save();
}

void CountingConfig::load_new() {
    calls.push_back("load_new");
    PRuntimeConfig::load_new();
}

void CountingConfig::load_old() {
    calls.push_back("load_old");
    PRuntimeConfig::load_old();
}

void CountingConfig::check_disk() {
    calls.push_back("check_disk");
    PRuntimeConfig::check_disk();
}

void CountingConfig::_set_setting_status(const NString& name, bool status) {
    calls.push_back(std::string("_set_setting_status:") + name.data());
    PRuntimeConfig::_set_setting_status(name, status);
}

NString CountingConfig::getConfigDirectory(const NString& name) {
    calls.push_back(std::string("getConfigDirectory:") + name.data());
    return PRuntimeConfig::getConfigDirectory(name);
}

NString CountingConfig::localRoot() {
    calls.push_back("localRoot");
    return PRuntimeConfig::localRoot();
}

NString CountingConfig::localFirmwareArchiver() {
    calls.push_back("localFirmwareArchiver");
    return PRuntimeConfig::localFirmwareArchiver();
}

NString CountingConfig::localNormal() {
    calls.push_back("localNormal");
    return PRuntimeConfig::localNormal();
}

void ConfigTest::SetUp() {
    std::filesystem::create_directories(resourcesDirectory());
    std::filesystem::create_directories(homeDirectory());
    std::filesystem::create_directories(backupDirectory());
    std::filesystem::create_directories(m_root.file("config"));
    useConfigDirectory(m_root.file("config"));
    NApplication::setDirectoryResources(NString(resourcesDirectory()));
    NApple::setBackupDirectory(NString(backupDirectory()));
    ::setenv("HOME", homeDirectory().c_str(), 1);

    // A test that runs in a process of its own finds the record as the library built it; one
    // that shares its process starts from the same empty state.
    _PALLIX_RUNTIME_CONFIG& config = _globalFrameworkConfig;
    config.newInstall = false;
    config.newUpdate = false;
    config.version = NString();
    config.lastVersion = NString();
    config.sameTimeDownloadNumber = 0;
    config.downloadMaxSpeed = 0;
    config.popupTimeADAPP = 0;
    config.lastSkin = NString();
    config.lastLanguage = EPALLIX_RUNTIME_LANGUAGE(0);
    config.restoreCore = EPALLIX_RUNTIME_RESTORE_CORE(0);
    config.status.clear();
    config.autoImport.clear();
    config.directory.clear();
    config.tools.clear();
    config.customBackup.clear();
    config.virtualLocation.clear();
    config.locationFavorites.clear();
    config.fileFavorites.clear();
}

void ConfigTest::TearDown() {
    PRuntime::freeInstance();
}

void ConfigTest::useConfigDirectory(const std::string& directory) {
    m_configDirectory = directory;
    NApplication::setDirectoryConfig(NString(directory));
}

void ConfigTest::writeCurrent(const std::string& xml) const {
    TemporaryDirectory::write(currentFile(), xml);
}

void ConfigTest::writeLegacy(const std::string& xml) const {
    TemporaryDirectory::write(legacyFile(), xml);
}

void ConfigTest::writeVersion(const std::string& version) const {
    TemporaryDirectory::write(resourcesDirectory() + "/UpdateCfg.xml",
                              "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<root>\n\t<Control>\n"
                              "\t\t<Version VALUE=\"" +
                                  version + "\" />\n\t</Control>\n</root>\n");
}

std::string ConfigTest::readCurrent() const {
    return TemporaryDirectory::read(currentFile());
}

pugi::xml_node ConfigTest::loadWritten(pugi::xml_document& document) const {
    const pugi::xml_parse_result result =
        document.load_file(currentFile().c_str(), pugi::parse_default, pugi::encoding_utf8);
    EXPECT_TRUE(result) << currentFile() << ": " << result.description();
    return document.child("Nevor");
}

PRuntimeConfig* ConfigTest::config() const {
    PRuntimeConfig* component = PRuntime::getInstance()->config();
    EXPECT_NE(component, nullptr);
    return component;
}

std::vector<std::string> childNames(const pugi::xml_node& node) {
    std::vector<std::string> names;
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling()) {
        names.emplace_back(child.name());
    }
    return names;
}

std::vector<std::string> attributeNames(const pugi::xml_node& node) {
    std::vector<std::string> names;
    for (pugi::xml_attribute attribute = node.first_attribute(); attribute;
         attribute = attribute.next_attribute()) {
        names.emplace_back(attribute.name());
    }
    return names;
}

bool exists(const std::string& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0;
}

bool isDirectory(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

unsigned int permissions(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        return 0;
    }
    return info.st_mode & 07777;
}

std::vector<std::string> customBackups(PRuntimeConfig& config) {
    std::vector<std::string> paths;
    config.customBackupTraverse([&paths](const NString& path) { paths.emplace_back(path.data()); });
    return paths;
}

std::vector<std::pair<std::string, bool>> fileFavourites(PRuntimeConfig& config) {
    std::vector<std::pair<std::string, bool>> favourites;
    config.fileCollectTraverse([&favourites](const NString& path, bool root) {
        favourites.emplace_back(path.data(), root);
        return true;
    });
    return favourites;
}

std::vector<Place> virtualLocations(PRuntimeConfig& config) {
    std::vector<Place> places;
    config.virtualLocationTraverse([&places](double x, double y, const NString& location) {
        places.push_back(Place{x, y, location.data()});
    });
    return places;
}

std::vector<Place> locationFavourites(PRuntimeConfig& config) {
    std::vector<Place> places;
    config.locationCollectTraverse([&places](double x, double y, const NString& location) {
        places.push_back(Place{x, y, location.data()});
    });
    return places;
}

void PrintTo(const Place& place, std::ostream* out) {
    *out << "(" << place.x << ", " << place.y << ", \"" << place.location << "\")";
}

} // namespace pallix::test
