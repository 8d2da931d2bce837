#include "PRuntimeCloud.h"

#include "CloudFormat.h"
#include "Conversions.h"
#include "NFileSystem.h"
#include "Operation.h"
#include "XmlFile.h"

#include <optional>
#include <utility>

namespace format = pallix::format::cloud;

namespace {

// Everything one document says, gathered before any of it is applied, so that the merge into
// the earlier state is a single step that allocates nothing. An empty optional stands for an
// element the document does not have, whose field therefore keeps its value.
struct Reading {
    std::optional<bool> advertisementPopup;
    std::optional<bool> advertisementAutoInstall;
    std::optional<bool> verifyGuideStatus;
    std::optional<NString> verifyGuidePixmap;
    std::list<PRuntimeCloudApplicationHash> applicationHash;
    std::optional<bool> sellStatus;
    std::optional<NString> sellTextDeviceInfo;
    std::optional<NString> sellTextDeviceVerify;
    std::optional<NString> authorizeAddress;
    std::optional<std::uint16_t> authorizePort;
    std::map<NString, PRuntimeCloudDevicePluginsItem> developerPlugins;
    std::map<NString, PRuntimeCloudDevicePluginsItem> developerPluginsRvq;
    std::optional<NString> driveVersion;
    std::optional<NString> driveItunes32;
    std::optional<NString> driveItunes64;
    std::list<PRuntimeCloudDeviceProcessItem> processPlugins;
    std::list<PRuntimeCloudDeviceProcessItem> processApplications;
};

// A missing attribute reads as false, as the empty text and as 0.
bool flag(const pugi::xml_node& node, const char* name) {
    return node.attribute(name).as_bool(false);
}

NString text(const pugi::xml_node& node, const char* name) {
    return NString(node.attribute(name).as_string(""));
}

// Calls `visit` with every child element of `list` in document order, whatever its name. Text
// between the children is not an entry.
template <typename Visit> void forEachElement(const pugi::xml_node& list, Visit visit) {
    for (pugi::xml_node child = list.first_child(); child; child = child.next_sibling()) {
        if (child.type() == pugi::node_element) {
            visit(child);
        }
    }
}

void readHashes(const pugi::xml_node& list, std::list<PRuntimeCloudApplicationHash>& into) {
    forEachElement(list, [&into](const pugi::xml_node& entry) {
        into.emplace_back(text(entry, format::kName), text(entry, format::kDigest),
                          text(entry, format::kAddress));
    });
}

// The first package of a version wins, within one document as against earlier ones.
void readPlugins(const pugi::xml_node& list,
                 std::map<NString, PRuntimeCloudDevicePluginsItem>& into) {
    forEachElement(list, [&into](const pugi::xml_node& entry) {
        PRuntimeCloudDevicePluginsItem item(text(entry, format::kVersion),
                                            text(entry, format::kAddress),
                                            text(entry, format::kHash));
        NString key = item.version();
        into.emplace(std::move(key), std::move(item));
    });
}

void readRules(const pugi::xml_node& list, std::list<PRuntimeCloudDeviceProcessItem>& into) {
    forEachElement(list, [&into](const pugi::xml_node& entry) {
        into.emplace_back(text(entry, format::kStartsWith), text(entry, format::kContains),
                          text(entry, format::kEndsWith), text(entry, format::kName));
    });
}

void readApplication(const pugi::xml_node& application, Reading& reading) {
    if (const pugi::xml_node advertisement = application.child(format::kAdvertisement)) {
        if (const pugi::xml_node ios = advertisement.child(format::kIosApplication)) {
            reading.advertisementPopup = flag(ios, format::kAutoPopup);
            reading.advertisementAutoInstall = flag(ios, format::kAutoInstall);
        }
    }
    if (const pugi::xml_node applet = application.child(format::kApplet)) {
        if (const pugi::xml_node guide = applet.child(format::kVerifyGuide)) {
            reading.verifyGuideStatus = flag(guide, format::kStatus);
            reading.verifyGuidePixmap = text(guide, format::kPixmap);
        }
    }
    if (const pugi::xml_node hashes = application.child(format::kHash)) {
        readHashes(hashes, reading.applicationHash);
    }
}

void readCooperate(const pugi::xml_node& cooperate, Reading& reading) {
    const pugi::xml_node hsb = cooperate.child(format::kHsb);
    if (!hsb) {
        return;
    }
    if (const pugi::xml_node status = hsb.child(format::kSellStatus)) {
        reading.sellStatus = flag(status, format::kValue);
    }
    if (const pugi::xml_node info = hsb.child(format::kSellTextDeviceInfo)) {
        reading.sellTextDeviceInfo = text(info, format::kValue);
    }
    if (const pugi::xml_node verify = hsb.child(format::kSellTextDeviceVerify)) {
        reading.sellTextDeviceVerify = text(verify, format::kValue);
    }
    if (const pugi::xml_node authorize = hsb.child(format::kAuthorize)) {
        reading.authorizeAddress = text(authorize, format::kServiceAddress);
        // A port is 16 bits wide; anything above keeps only its low bits.
        reading.authorizePort = pallix::format::readPort(authorize.attribute(format::kServicePort));
    }
}

void readDevice(const pugi::xml_node& device, Reading& reading) {
    if (const pugi::xml_node plugins = device.child(format::kDeveloperPlugins)) {
        readPlugins(plugins, reading.developerPlugins);
    }
    if (const pugi::xml_node plugins = device.child(format::kDeveloperPluginsRvq)) {
        readPlugins(plugins, reading.developerPluginsRvq);
    }
    if (const pugi::xml_node drive = device.child(format::kDrive)) {
        if (const pugi::xml_node version = drive.child(format::kVersion)) {
            reading.driveVersion = text(version, format::kValue);
        }
        if (const pugi::xml_node itunes = drive.child(format::kItunes)) {
            if (const pugi::xml_node x86 = itunes.child(format::kItunes32)) {
                reading.driveItunes32 = text(x86, format::kValue);
            }
            if (const pugi::xml_node x64 = itunes.child(format::kItunes64)) {
                reading.driveItunes64 = text(x64, format::kValue);
            }
        }
    }
    if (const pugi::xml_node manager = device.child(format::kProcessManager)) {
        if (const pugi::xml_node plugins = manager.child(format::kPluginRules)) {
            readRules(plugins, reading.processPlugins);
        }
        if (const pugi::xml_node process = manager.child(format::kApplicationRules)) {
            readRules(process, reading.processApplications);
        }
    }
}

template <typename T> void assignIfRead(T& field, std::optional<T>& value) noexcept {
    if (value) {
        field = std::move(*value);
    }
}

PRuntimeCloudApplicationHash findHash(const std::list<PRuntimeCloudApplicationHash>& list,
                                      const char* name) noexcept {
    for (const PRuntimeCloudApplicationHash& entry : list) {
        if (entry.name() == name) {
            return entry;
        }
    }
    return PRuntimeCloudApplicationHash();
}

PRuntimeCloudDevicePluginsItem
findPlugin(const std::map<NString, PRuntimeCloudDevicePluginsItem>& map,
           const NString& version) noexcept {
    // The empty version is never looked up, even when a package was filed under it.
    if (version.empty()) {
        return PRuntimeCloudDevicePluginsItem();
    }
    const auto found = map.find(version);
    return found != map.end() ? found->second : PRuntimeCloudDevicePluginsItem();
}

// An empty pattern holds for every name; the rule's own name is its payload, not a pattern.
bool ruleHolds(const PRuntimeCloudDeviceProcessItem& rule, const NString& name) {
    const bool starts = rule.startsWith().empty() || name.startsWith(rule.startsWith());
    const bool contains = rule.contains().empty() || name.contains(rule.contains());
    const bool ends = rule.endsWith().empty() || name.endsWith(rule.endsWith());
    return starts && contains && ends;
}

// The callback is not guarded: whatever it throws passes to the caller of the lookup, and so
// does the standard wrapper's bad_function_call when the callback is empty.
bool findRule(const std::list<PRuntimeCloudDeviceProcessItem>& rules, const NString& name,
              const PRuntimeCloud::ProcessCallback& callback) {
    for (const PRuntimeCloudDeviceProcessItem& rule : rules) {
        if (ruleHolds(rule, name)) {
            callback(rule);
            return true;
        }
    }
    return false;
}

} // namespace

PRuntimeCloud::PRuntimeCloud() noexcept
    : m_advertisementPopup(false), m_advertisementAutoInstall(false), m_verifyGuideStatus(false),
      m_sellStatus(false), m_authorizePort(0) {}

PRuntimeCloud::~PRuntimeCloud() = default;

bool PRuntimeCloud::format(const NString& path) {
    return pallix::operation([&] {
        Reading reading;
        if (!NFileSystem::file::exist(NFileSystem::path(path))) {
            return false;
        }
        pugi::xml_document document;
        if (!pallix::XmlFile::load(document, path)) {
            return false;
        }
        const pugi::xml_node root = document.child(format::kRoot);
        if (!root) {
            return true;
        }
        if (const pugi::xml_node application = root.child(format::kApplication)) {
            readApplication(application, reading);
        }
        if (const pugi::xml_node cooperate = root.child(format::kCooperate)) {
            readCooperate(cooperate, reading);
        }
        if (const pugi::xml_node device = root.child(format::kDevice)) {
            readDevice(device, reading);
        }

        // From here on nothing allocates: values are moved in, list nodes spliced over and map
        // nodes handed across, and merge() leaves behind every key this object already holds.
        assignIfRead(m_advertisementPopup, reading.advertisementPopup);
        assignIfRead(m_advertisementAutoInstall, reading.advertisementAutoInstall);
        assignIfRead(m_verifyGuideStatus, reading.verifyGuideStatus);
        assignIfRead(m_verifyGuidePixmap, reading.verifyGuidePixmap);
        m_applicationHash.splice(m_applicationHash.end(), reading.applicationHash);
        assignIfRead(m_sellStatus, reading.sellStatus);
        assignIfRead(m_sellTextDeviceInfo, reading.sellTextDeviceInfo);
        assignIfRead(m_sellTextDeviceVerify, reading.sellTextDeviceVerify);
        assignIfRead(m_authorizeAddress, reading.authorizeAddress);
        assignIfRead(m_authorizePort, reading.authorizePort);
        m_developerPlugins.merge(reading.developerPlugins);
        m_developerPluginsRvq.merge(reading.developerPluginsRvq);
        assignIfRead(m_driveVersion, reading.driveVersion);
        assignIfRead(m_driveItunes32, reading.driveItunes32);
        assignIfRead(m_driveItunes64, reading.driveItunes64);
        m_processPlugins.splice(m_processPlugins.end(), reading.processPlugins);
        m_processApplications.splice(m_processApplications.end(), reading.processApplications);
        return true;
    });
}

bool PRuntimeCloud::application_advertisement_iosapp_popup() const {
    return m_advertisementPopup;
}

bool PRuntimeCloud::application_advertisement_iosapp_auto_install() const {
    return m_advertisementAutoInstall;
}

bool PRuntimeCloud::applet_verify_guide_status() const {
    return m_verifyGuideStatus;
}

NString PRuntimeCloud::applet_verify_guide_pixmap() const {
    return pallix::operation([&] { return m_verifyGuidePixmap; });
}

PRuntimeCloudApplicationHash PRuntimeCloud::application_hash_cpid() const {
    return findHash(m_applicationHash, format::kReferenceCpid);
}

PRuntimeCloudApplicationHash PRuntimeCloud::application_hash_crash_code() const {
    return findHash(m_applicationHash, format::kReferenceCrashCode);
}

PRuntimeCloudApplicationHash PRuntimeCloud::application_hash_restore_code() const {
    return findHash(m_applicationHash, format::kReferenceRestoreCode);
}

PRuntimeCloudApplicationHash PRuntimeCloud::application_hash_restore_version() const {
    return findHash(m_applicationHash, format::kReferenceRestoreVersion);
}

PRuntimeCloudApplicationHash PRuntimeCloud::application_hash_developer_plugin_mapping() const {
    return findHash(m_applicationHash, format::kReferencePluginMapping);
}

bool PRuntimeCloud::cooperate_hsb_sell_status() const {
    return m_sellStatus;
}

const NString& PRuntimeCloud::cooperate_hsb_sell_text_device_info() const {
    return m_sellTextDeviceInfo;
}

const NString& PRuntimeCloud::cooperate_hsb_sell_text_device_verify() const {
    return m_sellTextDeviceVerify;
}

const NString& PRuntimeCloud::cooperate_hsb_device_authorize_ipaddress() const {
    return m_authorizeAddress;
}

std::uint16_t PRuntimeCloud::cooperate_hsb_device_authorize_ipport() const {
    return m_authorizePort;
}

PRuntimeCloudDevicePluginsItem PRuntimeCloud::device_plugins_find(const NString& version) const {
    return findPlugin(m_developerPlugins, version);
}

PRuntimeCloudDevicePluginsItem
PRuntimeCloud::device_plugins_find_by_rvq(const NString& version) const {
    return findPlugin(m_developerPluginsRvq, version);
}

const NString& PRuntimeCloud::device_drive_version() const {
    return m_driveVersion;
}

const NString& PRuntimeCloud::device_drive_itunes_32() const {
    return m_driveItunes32;
}

const NString& PRuntimeCloud::device_drive_itunes_64() const {
    return m_driveItunes64;
}

bool PRuntimeCloud::device_process_plugins_find(const NString& name,
                                                const ProcessCallback& callback) const {
    return findRule(m_processPlugins, name, callback);
}

bool PRuntimeCloud::device_process_application_find(const NString& name,
                                                    const ProcessCallback& callback) const {
    return findRule(m_processApplications, name, callback);
}

const NString& PRuntimeCloud::version() const {
    return m_version;
}

void PRuntimeCloud::application_hash_traverse(
    const std::function<void(const PRuntimeCloudApplicationHash&)>& visit) const {
    pallix::operation([&] {
        for (const PRuntimeCloudApplicationHash& entry : m_applicationHash) {
            visit(entry);
        }
    });
}

void PRuntimeCloud::device_plugins_traverse(
    const std::function<void(const NString&, const PRuntimeCloudDevicePluginsItem&)>& visit) const {
    pallix::operation([&] {
        for (const auto& [version, item] : m_developerPlugins) {
            visit(version, item);
        }
    });
}

void PRuntimeCloud::device_plugins_rvq_traverse(
    const std::function<void(const NString&, const PRuntimeCloudDevicePluginsItem&)>& visit) const {
    pallix::operation([&] {
        for (const auto& [version, item] : m_developerPluginsRvq) {
            visit(version, item);
        }
    });
}

void PRuntimeCloud::device_process_plugins_traverse(
    const std::function<void(const PRuntimeCloudDeviceProcessItem&)>& visit) const {
    pallix::operation([&] {
        for (const PRuntimeCloudDeviceProcessItem& rule : m_processPlugins) {
            visit(rule);
        }
    });
}

void PRuntimeCloud::device_process_application_traverse(
    const std::function<void(const PRuntimeCloudDeviceProcessItem&)>& visit) const {
    pallix::operation([&] {
        for (const PRuntimeCloudDeviceProcessItem& rule : m_processApplications) {
            visit(rule);
        }
    });
}
