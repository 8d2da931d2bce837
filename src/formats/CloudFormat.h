#pragma once

// The cloud document (root "Nevor"): switches and texts under Application and Cooperate, the
// reference files, plug-in packages, driver versions and process rules.
namespace pallix::format::cloud {

inline constexpr char kRoot[] = "Nevor";
inline constexpr char kValue[] = "VALUE";

// <Application>
inline constexpr char kApplication[] = "Application";
inline constexpr char kAdvertisement[] = "Advertisement";
inline constexpr char kIosApplication[] = "IosApplication";
inline constexpr char kAutoPopup[] = "AutoPopup";
inline constexpr char kAutoInstall[] = "AutoInstall";
inline constexpr char kApplet[] = "Applet";
inline constexpr char kVerifyGuide[] = "VerifyGuide";
inline constexpr char kStatus[] = "Status";
inline constexpr char kPixmap[] = "Pixmap";
inline constexpr char kHash[] = "Hash"; // the reference files' list, and a package's digest

// A reference file: <Item Name="CPID" MD5="..." Url="..."/>, one of five names.
inline constexpr char kName[] = "Name";
inline constexpr char kDigest[] = "MD5";
inline constexpr char kAddress[] = "Url";
inline constexpr char kReferenceCpid[] = "CPID";
inline constexpr char kReferenceCrashCode[] = "CrashCode";
inline constexpr char kReferenceRestoreCode[] = "RestoreCode";
inline constexpr char kReferenceRestoreVersion[] = "RestoreVersion";
inline constexpr char kReferencePluginMapping[] = "DeveloperPluginMapping";
inline constexpr const char* kReferenceNames[] = {kReferenceCpid, kReferenceCrashCode,
                                                  kReferenceRestoreCode, kReferenceRestoreVersion,
                                                  kReferencePluginMapping};

// <Cooperate><HSB>
inline constexpr char kCooperate[] = "Cooperate";
inline constexpr char kHsb[] = "HSB";
inline constexpr char kSellStatus[] = "SellStatus";
inline constexpr char kSellTextDeviceInfo[] = "SellTextDeviceInfo";
inline constexpr char kSellTextDeviceVerify[] = "SellTextDeviceVerify";
inline constexpr char kAuthorize[] = "Authorize";
inline constexpr char kServiceAddress[] = "ServiceIP";
inline constexpr char kServicePort[] = "ServicePort";

// <Device>
inline constexpr char kDevice[] = "Device";
inline constexpr char kDeveloperPlugins[] = "DeveloperPlugins";
inline constexpr char kDeveloperPluginsRvq[] = "DeveloperPlugins_RVQ";
inline constexpr char kVersion[] = "Version"; // a package's version; the driver version element
inline constexpr char kDrive[] = "Drive";
inline constexpr char kItunes[] = "iTunes";
inline constexpr char kItunes32[] = "X86";
inline constexpr char kItunes64[] = "X64";
inline constexpr char kProcessManager[] = "ProcessManager";
inline constexpr char kPluginRules[] = "Plugins";
inline constexpr char kApplicationRules[] = "Process";
// A rule's patterns and its name.
inline constexpr char kStartsWith[] = "StartsWith";
inline constexpr char kContains[] = "Contains";
inline constexpr char kEndsWith[] = "EndsWith";

} // namespace pallix::format::cloud
