#pragma once

// The names of the files that the library keeps, each joined to its directory with "/".
namespace pallix::format {

// In the configuration directory.
inline constexpr char kConfigurationFile[] = "configure.xml";
inline constexpr char kLegacyConfigurationFile[] = "Config.xml";
inline constexpr char kNotifyFile[] = "notify.xml";
// The directory of the earlier one-file-per-notification layout, and its files' extension.
inline constexpr char kOldNotifyDirectory[] = "Notify";
inline constexpr char kOldNotifyExtension[] = ".xml";
inline constexpr char kPortbindFile[] = "PortBind.xml";
inline constexpr char kFactoryFile[] = "Factory.json";
inline constexpr char kCustomFirmwareFile[] = "RestoreIpsw.xml";

// In the resources directory.
inline constexpr char kVersionFile[] = "UpdateCfg.xml";

// In the firmware archive directory.
inline constexpr char kFirmwareVersionFile[] = "version.xml";

} // namespace pallix::format
