#include "NFileSystem.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

namespace NFileSystem {
namespace directory {

namespace {

std::vector<std::string> entriesOf(const std::string& directory) {
    std::vector<std::string> names;
    DIR* handle = ::opendir(directory.c_str());
    if (handle == nullptr) {
        return names;
    }
    while (const dirent* entry = ::readdir(handle)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            names.push_back(name);
        }
    }
    ::closedir(handle);
    return names;
}

bool isRealDirectory(const std::string& p) {
    struct stat info {};
    return ::lstat(p.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Removes what the filter selects below `directory`, then the directory if it is empty.
// Symbolic links are removed as links, never followed.
bool removeTree(const std::string& directory, const Filter& filter) {
    bool ok = true;
    for (const std::string& name : entriesOf(directory)) {
        const std::string entry = directory + "/" + name;
        if (isRealDirectory(entry)) {
            ok = removeTree(entry, filter) && ok;
        } else if (!filter || filter(path(NString(entry)))) {
            ok = (::unlink(entry.c_str()) == 0) && ok;
        }
    }
    if (::rmdir(directory.c_str()) != 0) {
        // A directory that the filter kept entries in is not an error.
        return ok && errno == ENOTEMPTY && static_cast<bool>(filter);
    }
    return ok;
}

} // namespace

bool exist(const path& p) {
    return path::isDirectory(p);
}

bool create(const path& p, unsigned int mode) {
    const std::string target = path::format(p).data().toStdString();
    if (p.data().empty()) {
        return false;
    }
    std::size_t position = 0;
    while (position != std::string::npos) {
        position = target.find('/', position + 1);
        const std::string prefix = target.substr(0, position);
        if (!prefix.empty() && ::mkdir(prefix.c_str(), static_cast<mode_t>(mode)) != 0 &&
            errno != EEXIST) {
            return false;
        }
    }
    return path::isDirectory(p);
}

bool remove(const path& p, const Filter& filter) {
    const std::string target = p.data().toStdString();
    if (target.empty() || !isRealDirectory(target)) {
        return false;
    }
    return removeTree(target, filter);
}

bool traverse(const path& p, const Visitor& visit) {
    const std::string directory = p.data().toStdString();
    if (!visit || directory.empty() || !path::isDirectory(p)) {
        return false;
    }
    for (const std::string& name : entriesOf(directory)) {
        if (!visit(path(NString(directory + "/" + name)))) {
            break;
        }
    }
    return true;
}

} // namespace directory
} // namespace NFileSystem
