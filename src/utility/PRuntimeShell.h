#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

// Removes paths and opens files, folders, images and web addresses with the desktop. It holds
// no state; use it from the interface thread.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeShell {
public:
    PRuntimeShell() noexcept;
    virtual ~PRuntimeShell();

    // Deletes a file, or a directory with everything in it. False when nothing is at the path
    // or the removal failed.
    virtual bool Remove(const NString& path) const;
    // Hands the normalised local path to the desktop's default application.
    virtual bool OpenFile(const NString& path) const;
    // Runs "open <path>" through the shell. The path is not quoted: one with blanks arrives at
    // the command as several arguments. False for an empty path, without running anything.
    virtual bool OpenImage(const NString& path) const;
    // The same as OpenFile: the desktop shows a folder in its file manager.
    virtual bool OpenDirectory(const NString& path) const;
    // Parses the address tolerantly and hands it to the desktop.
    virtual bool OpenURL(const NString& url) const;
    // Opens the product's web site.
    virtual bool OpenTolvane() const;

    PRuntimeShell(const PRuntimeShell&) = delete;
    PRuntimeShell& operator=(const PRuntimeShell&) = delete;
};
