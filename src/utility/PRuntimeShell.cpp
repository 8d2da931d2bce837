#include "PRuntimeShell.h"

#include "NFileSystem.h"
#include "NShell.h"
#include "Operation.h"
#include "PRuntimeString.h"
#include "ProductAddress.h"

#include <QDesktopServices>
#include <QString>
#include <QUrl>

PRuntimeShell::PRuntimeShell() noexcept = default;

PRuntimeShell::~PRuntimeShell() = default;

bool PRuntimeShell::Remove(const NString& path) const {
    return pallix::operation([&] {
        if (!NFileSystem::path::exist(path)) {
            return false;
        }
        if (NFileSystem::path::isFile(path)) {
            return NFileSystem::file::remove(path);
        }
        // An empty filter takes every entry.
        return NFileSystem::directory::remove(path, NFileSystem::directory::Filter());
    });
}

bool PRuntimeShell::OpenFile(const NString& path) const {
    return pallix::operation([&] {
        const NFileSystem::path normalised = NFileSystem::path::format(path);
        const QString local = _8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(normalised.data());
        return QDesktopServices::openUrl(QUrl::fromLocalFile(local));
    });
}

bool PRuntimeShell::OpenImage(const NString& path) const {
    return pallix::operation([&] {
        if (!path.exist()) {
            return false;
        }
        // Unquoted by design: the host relies on the command line exactly as it is built here.
        return NShell::system(NString("open ") + path) == 0;
    });
}

bool PRuntimeShell::OpenDirectory(const NString& path) const {
    return pallix::operation([&] { return OpenFile(path); });
}

bool PRuntimeShell::OpenURL(const NString& url) const {
    return pallix::operation([&] {
        const QUrl address(_8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(url), QUrl::TolerantMode);
        return QDesktopServices::openUrl(address);
    });
}

bool PRuntimeShell::OpenTolvane() const {
    return pallix::operation([&] { return OpenURL(NString(pallix::productAddress)); });
}
