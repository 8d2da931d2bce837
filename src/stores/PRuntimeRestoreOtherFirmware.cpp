#include "PRuntimeRestoreOtherFirmware.h"

#include "NFileSystem.h"

PRuntimeRestoreOtherFirmware::PRuntimeRestoreOtherFirmware() noexcept = default;

PRuntimeRestoreOtherFirmware::~PRuntimeRestoreOtherFirmware() = default;

void PRuntimeRestoreOtherFirmware::append(const NString& directory) noexcept {
    std::lock_guard<std::mutex> guard(m_mutex);
    try {
        m_directories.push_back(directory);
    } catch (...) {
        // Out of memory: the directory is not added.
    }
}

bool PRuntimeRestoreOtherFirmware::find(const NString& name, const Visitor& visit) noexcept {
    const NString path = find(name);
    if (!path.exist()) {
        return false;
    }
    if (visit) {
        visit(path);
    }
    return true;
}

bool PRuntimeRestoreOtherFirmware::find(const NString& name, NString& path) noexcept {
    const NString found = find(name);
    if (!found.exist()) {
        return false;
    }
    try {
        path = found;
    } catch (...) {
        return false;
    }
    return true;
}

NString PRuntimeRestoreOtherFirmware::find(const NString& name) noexcept {
    std::lock_guard<std::mutex> guard(m_mutex);
    try {
        for (const NString& directory : m_directories) {
            NString candidate = directory + "/" + name;
            if (NFileSystem::file::exist(candidate)) {
                return candidate;
            }
        }
    } catch (...) {
        // Out of memory while forming a path: as if no file were found.
    }
    return NString();
}
