#include "ConfigDirectoryFiles.h"

#include "FileNames.h"
#include "ValueRules.h"

#include <filesystem>
#include <set>

namespace pallix::check {

namespace {

namespace fs = std::filesystem;

bool is(fs::file_type type, const fs::path& path) {
    std::error_code ignored;
    return fs::status(path, ignored).type() == type;
}

} // namespace

std::vector<DirectoryFile> configDirectoryFiles(std::string given) {
    while (given.size() > 1 && given.back() == '/') {
        given.pop_back();
    }
    const fs::path directory(given);
    const fs::path legacy = directory / format::kLegacyConfigurationFile;
    const fs::path old = directory / format::kOldNotifyDirectory;
    const std::string hidden = "the library does not read this file: ";
    const std::string oldName = inQuotes(format::kOldNotifyDirectory);
    std::vector<DirectoryFile> files;
    auto add = [&files](const fs::path& path, std::optional<FileKind> kind,
                        const std::string& note = "", bool noteOnly = false) {
        std::error_code ignored;
        if (fs::exists(path, ignored)) {
            files.push_back(DirectoryFile{path.string(), kind, note, noteOnly});
        }
    };
    // While the legacy configuration or the old notifications' directory is there, the library
    // imports it in place of the current file, and its next write replaces that file.
    add(directory / format::kConfigurationFile, FileKind::Config,
        is(fs::file_type::regular, legacy)
            ? hidden + inQuotes(format::kLegacyConfigurationFile) +
                  " beside it is imported in its place, and the import then overwrites this file"
            : "");
    add(legacy, FileKind::LegacyConfig);
    add(directory / format::kNotifyFile, FileKind::Notify,
        is(fs::file_type::directory, old)
            ? hidden + "the old " + oldName +
                  " directory beside it is imported in its place, and the next change to the "
                  "notifications overwrites this file"
            : "");
    // The import reads "<base name>.xml" for every regular file of the directory.
    std::error_code ignored;
    std::set<fs::path> oldFiles;
    for (const auto& entry : fs::directory_iterator(old, ignored)) {
        if (is(fs::file_type::regular, entry.path())) {
            oldFiles.insert(entry.path());
        }
    }
    for (const fs::path& path : oldFiles) {
        const std::string readInstead = path.stem().string() + format::kOldNotifyExtension;
        if (path.filename() == readInstead) {
            add(path, FileKind::OldNotify);
        } else {
            add(path, std::nullopt,
                "the library never reads this file: for it, the import of the old " + oldName +
                    " directory reads " + inQuotes(readInstead) +
                    " in its place, and then deletes it with the directory",
                true);
        }
    }
    add(directory / format::kPortbindFile, FileKind::Portbind);
    add(directory / format::kFactoryFile, FileKind::Factory);
    add(directory / format::kCustomFirmwareFile, FileKind::Ipsw);
    return files;
}

} // namespace pallix::check
