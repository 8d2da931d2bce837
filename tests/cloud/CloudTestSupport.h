#pragma once

#include "PRuntimeCloud.h"
#include "TemporaryDirectory.h"

#include <string>
#include <vector>

namespace pallix::test {

// Opens the cloud document's state to the tests, which check it field by field.
class CloudState : public PRuntimeCloud {
public:
    using PRuntimeCloud::m_advertisementAutoInstall;
    using PRuntimeCloud::m_advertisementPopup;
    using PRuntimeCloud::m_applicationHash;
    using PRuntimeCloud::m_authorizeAddress;
    using PRuntimeCloud::m_authorizePort;
    using PRuntimeCloud::m_developerPlugins;
    using PRuntimeCloud::m_developerPluginsRvq;
    using PRuntimeCloud::m_driveItunes32;
    using PRuntimeCloud::m_driveItunes64;
    using PRuntimeCloud::m_driveVersion;
    using PRuntimeCloud::m_processApplications;
    using PRuntimeCloud::m_processPlugins;
    using PRuntimeCloud::m_sellStatus;
    using PRuntimeCloud::m_sellTextDeviceInfo;
    using PRuntimeCloud::m_sellTextDeviceVerify;
    using PRuntimeCloud::m_verifyGuidePixmap;
    using PRuntimeCloud::m_verifyGuideStatus;
    using PRuntimeCloud::m_version;

    // Loads `body` (placed inside a "Nevor" root) from a file of its own in `directory`.
    bool formatText(const TemporaryDirectory& directory, const std::string& body);
};

// A whole document: a declaration and `body` inside the "Nevor" root.
std::string nevorDocument(const std::string& body);

// Writes `text` to a new file in `directory` and returns its path.
std::string writeFile(const TemporaryDirectory& directory, const std::string& text);

// The state as text lines ("field: value"), for comparing a whole state at once.
std::vector<std::string> describe(const CloudState& cloud);

} // namespace pallix::test
