#pragma once

#include "NString.h"
#include "PRuntimeCloudApplicationHash.h"
#include "PRuntimeCloudDevicePluginsItem.h"
#include "PRuntimeCloudDeviceProcessItem.h"
#include "PallixRuntimeExport.h"

#include <cstdint>
#include <functional>
#include <list>
#include <map>

// The cloud document that the application downloads from its service: feature switches, the
// selling partner's settings, the current reference files, developer plug-in packages, expected
// driver versions and the rules that recognise running programs.
//
// format() merges a document into what earlier calls read: scalars are overwritten where their
// element is present, lists are appended to and maps gain only keys they do not hold yet. The
// object is loaded on the interface thread before it is queried and takes no lock.
//
// The order of the virtual operations is part of the binary interface, and so is the order of
// the state below.
class PALLIX_RUNTIME_EXPORT PRuntimeCloud {
public:
    using ProcessCallback = std::function<void(const PRuntimeCloudDeviceProcessItem&)>;

    PRuntimeCloud() noexcept;
    virtual ~PRuntimeCloud();

    // Reads the document at `path`. False when the file is missing or not well-formed XML, and
    // then nothing changes; true otherwise, also when the document has no "Nevor" root.
    virtual bool format(const NString& path);

    // Application/Advertisement/IosApplication
    virtual bool application_advertisement_iosapp_popup() const;
    virtual bool application_advertisement_iosapp_auto_install() const;
    // Application/Applet/VerifyGuide; the pixmap text is handed out undecoded.
    virtual bool applet_verify_guide_status() const;
    virtual NString applet_verify_guide_pixmap() const;

    // The first reference-file entry of the given name, or an empty entry.
    virtual PRuntimeCloudApplicationHash application_hash_cpid() const;
    virtual PRuntimeCloudApplicationHash application_hash_crash_code() const;
    virtual PRuntimeCloudApplicationHash application_hash_restore_code() const;
    virtual PRuntimeCloudApplicationHash application_hash_restore_version() const;
    virtual PRuntimeCloudApplicationHash application_hash_developer_plugin_mapping() const;

    // Cooperate/HSB
    virtual bool cooperate_hsb_sell_status() const;
    virtual const NString& cooperate_hsb_sell_text_device_info() const;
    virtual const NString& cooperate_hsb_sell_text_device_verify() const;
    virtual const NString& cooperate_hsb_device_authorize_ipaddress() const;
    virtual std::uint16_t cooperate_hsb_device_authorize_ipport() const;

    // The package of the given version, or an empty item (always for an empty version).
    virtual PRuntimeCloudDevicePluginsItem device_plugins_find(const NString& version) const;
    virtual PRuntimeCloudDevicePluginsItem device_plugins_find_by_rvq(const NString& version) const;

    // Device/Drive
    virtual const NString& device_drive_version() const;
    virtual const NString& device_drive_itunes_32() const;
    virtual const NString& device_drive_itunes_64() const;

    // Finds the first rule, in document order, whose patterns all hold for `name`, hands it to
    // `callback` once and returns true; false without calling back when no rule holds. An
    // exception thrown by the callback reaches the caller, and so does the standard wrapper's
    // bad_function_call when a rule holds and the callback is empty.
    virtual bool device_process_plugins_find(const NString& name,
                                             const ProcessCallback& callback) const;
    virtual bool device_process_application_find(const NString& name,
                                                 const ProcessCallback& callback) const;

    // Nothing assigns it: it stays empty.
    virtual const NString& version() const;

    // Beyond the virtual operations: everything the document gave, for a caller that shows it
    // whole. The reference entries and the rules in document order, the plug-in packages by
    // version (the entry that the find operations answer with).
    void application_hash_traverse(
        const std::function<void(const PRuntimeCloudApplicationHash&)>& visit) const;
    void device_plugins_traverse(
        const std::function<void(const NString&, const PRuntimeCloudDevicePluginsItem&)>& visit)
        const;
    void device_plugins_rvq_traverse(
        const std::function<void(const NString&, const PRuntimeCloudDevicePluginsItem&)>& visit)
        const;
    void device_process_plugins_traverse(
        const std::function<void(const PRuntimeCloudDeviceProcessItem&)>& visit) const;
    void device_process_application_traverse(
        const std::function<void(const PRuntimeCloudDeviceProcessItem&)>& visit) const;

    PRuntimeCloud(const PRuntimeCloud&) = delete;
    PRuntimeCloud& operator=(const PRuntimeCloud&) = delete;

protected:
    // Kept open to subclasses that answer some queries differently.
    bool m_advertisementPopup;
    bool m_advertisementAutoInstall;
    bool m_verifyGuideStatus;
    NString m_verifyGuidePixmap;
    std::list<PRuntimeCloudApplicationHash> m_applicationHash;
    bool m_sellStatus;
    NString m_sellTextDeviceInfo;
    NString m_sellTextDeviceVerify;
    NString m_authorizeAddress;
    std::uint16_t m_authorizePort;
    std::map<NString, PRuntimeCloudDevicePluginsItem> m_developerPlugins;
    std::map<NString, PRuntimeCloudDevicePluginsItem> m_developerPluginsRvq;
    NString m_driveVersion;
    NString m_driveItunes32;
    NString m_driveItunes64;
    std::list<PRuntimeCloudDeviceProcessItem> m_processPlugins;
    std::list<PRuntimeCloudDeviceProcessItem> m_processApplications;
    NString m_version;
};
