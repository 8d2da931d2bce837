#include "FuzzConfigSupport.h"

#include "NApple.h"
#include "NApplication.h"
#include "PRuntimeConfig.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

namespace pallix::fuzz {

namespace {

class ScratchDirectory {
public:
    ScratchDirectory() {
        const char* base = std::getenv("TMPDIR");
        std::string pattern = std::string(base != nullptr && *base != '\0' ? base : "/tmp") +
                              "/pallix-fuzz-config-XXXXXX";
        std::vector<char> buffer(pattern.begin(), pattern.end());
        buffer.push_back('\0');
        if (::mkdtemp(buffer.data()) == nullptr) {
            std::abort();
        }
        m_path = buffer.data();
        NApplication::setDirectoryConfig(NString(m_path));
        NApplication::setDirectoryResources(NString(m_path));
        NApple::setBackupDirectory(NString(m_path + "/Backup"));
    }
    // Removes the directory with whatever the harnesses and the library left in it (the
    // version file of config_version_fuzzer, backups, temporary files of the writer).
    ~ScratchDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

std::string readFile(const std::string& path) {
    std::ifstream input(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(input)), std::istreambuf_iterator<char>());
}

} // namespace

const std::string& configDirectory() {
    static const ScratchDirectory directory;
    return directory.path();
}

void writeInput(const std::string& name, const std::uint8_t* data, std::size_t size) {
    std::ofstream output(configDirectory() + "/" + name, std::ios::binary | std::ios::trunc);
    output.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

void resetRecord() {
    _PALLIX_RUNTIME_CONFIG& record = _globalFrameworkConfig;
    record.newInstall = false;
    record.newUpdate = false;
    record.version = NString();
    record.lastVersion = NString();
    record.sameTimeDownloadNumber = 0;
    record.downloadMaxSpeed = 0;
    record.popupTimeADAPP = 0;
    record.lastSkin = NString();
    record.lastLanguage = EPALLIX_RUNTIME_LANGUAGE(0);
    record.restoreCore = EPALLIX_RUNTIME_RESTORE_CORE(0);
    record.status.clear();
    record.autoImport.clear();
    record.directory.clear();
    record.tools.clear();
    record.customBackup.clear();
    record.virtualLocation.clear();
    record.locationFavorites.clear();
    record.fileFavorites.clear();
}

void checkWriterIsStable() {
    PRuntimeConfig config;
    const std::string current = configDirectory() + "/configure.xml";
    config.save();
    resetRecord();
    config.load_new();
    config.save();
    const std::string second = readFile(current);
    resetRecord();
    config.load_new();
    config.save();
    if (readFile(current) != second) {
        __builtin_trap();
    }
}

} // namespace pallix::fuzz
