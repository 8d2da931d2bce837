#include "CloudTestSupport.h"

namespace pallix::test {

bool CloudState::formatText(const TemporaryDirectory& directory, const std::string& body) {
    return format(NString(writeFile(directory, nevorDocument(body))));
}

std::string nevorDocument(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Nevor>\n" + body + "\n</Nevor>\n";
}

std::string writeFile(const TemporaryDirectory& directory, const std::string& text) {
    static int counter = 0;
    const std::string path = directory.file("cloud-" + std::to_string(++counter) + ".xml");
    TemporaryDirectory::write(path, text);
    return path;
}

std::vector<std::string> describe(const CloudState& cloud) {
    std::vector<std::string> lines;
    const auto flag = [](bool value) { return std::string(value ? "true" : "false"); };
    lines.push_back("popup: " + flag(cloud.m_advertisementPopup));
    lines.push_back("autoInstall: " + flag(cloud.m_advertisementAutoInstall));
    lines.push_back("verifyGuideStatus: " + flag(cloud.m_verifyGuideStatus));
    lines.push_back("verifyGuidePixmap: " + cloud.m_verifyGuidePixmap.toStdString());
    for (const auto& entry : cloud.m_applicationHash) {
        lines.push_back("hash: " + entry.name().toStdString() + " " + entry.hash().toStdString() +
                        " " + entry.url().toStdString());
    }
    lines.push_back("sellStatus: " + flag(cloud.m_sellStatus));
    lines.push_back("sellTextDeviceInfo: " + cloud.m_sellTextDeviceInfo.toStdString());
    lines.push_back("sellTextDeviceVerify: " + cloud.m_sellTextDeviceVerify.toStdString());
    lines.push_back("authorizeAddress: " + cloud.m_authorizeAddress.toStdString());
    lines.push_back("authorizePort: " + std::to_string(cloud.m_authorizePort));
    for (const auto& [key, item] : cloud.m_developerPlugins) {
        lines.push_back("plugin: " + key.toStdString() + " " + item.version().toStdString() + " " +
                        item.url().toStdString() + " " + item.hash().toStdString());
    }
    for (const auto& [key, item] : cloud.m_developerPluginsRvq) {
        lines.push_back("pluginRvq: " + key.toStdString() + " " + item.version().toStdString() +
                        " " + item.url().toStdString() + " " + item.hash().toStdString());
    }
    lines.push_back("driveVersion: " + cloud.m_driveVersion.toStdString());
    lines.push_back("driveItunes32: " + cloud.m_driveItunes32.toStdString());
    lines.push_back("driveItunes64: " + cloud.m_driveItunes64.toStdString());
    for (const auto& rule : cloud.m_processPlugins) {
        lines.push_back("pluginRule: " + rule.startsWith().toStdString() + "|" +
                        rule.contains().toStdString() + "|" + rule.endsWith().toStdString() + "|" +
                        rule.name().toStdString());
    }
    for (const auto& rule : cloud.m_processApplications) {
        lines.push_back("applicationRule: " + rule.startsWith().toStdString() + "|" +
                        rule.contains().toStdString() + "|" + rule.endsWith().toStdString() + "|" +
                        rule.name().toStdString());
    }
    lines.push_back("version: " + cloud.m_version.toStdString());
    return lines;
}

} // namespace pallix::test
