#include "PRuntimeRestoreOtherFirmware.h"

#include "NFileSystem.h"
#include "Operation.h"

PRuntimeRestoreOtherFirmware::PRuntimeRestoreOtherFirmware() noexcept = default;

PRuntimeRestoreOtherFirmware::~PRuntimeRestoreOtherFirmware() = default;

void PRuntimeRestoreOtherFirmware::append(const NString& directory) {
    pallix::operation([&] {
        std::lock_guard<std::mutex> guard(m_mutex);
        m_directories.push_back(directory);
    });
}

bool PRuntimeRestoreOtherFirmware::find(const NString& name, const Visitor& visit) {
    return pallix::operation([&] {
        const NString path = find(name);
        if (!path.exist()) {
            return false;
        }
        if (visit) {
            visit(path);
        }
        return true;
    });
}

bool PRuntimeRestoreOtherFirmware::find(const NString& name, NString& path) {
    return pallix::operation([&] {
        const NString found = find(name);
        if (!found.exist()) {
            return false;
        }

        path = found;
        return true;
    });
}

NString PRuntimeRestoreOtherFirmware::find(const NString& name) {
    return pallix::operation([&] {
        std::lock_guard<std::mutex> guard(m_mutex);
        for (const NString& directory : m_directories) {
            NString candidate = directory + "/" + name;
            if (NFileSystem::file::exist(candidate)) {
                return candidate;
            }
        }

        return NString();
    });
}
