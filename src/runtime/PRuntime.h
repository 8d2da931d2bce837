#pragma once

#include "PallixRuntimeExport.h"

class PRuntimeValue;
class PRuntimePortbind;
class PRuntimeLocation;
class PRuntimeShell;
class PRuntimeString;
class PRuntimePicture;
class PRuntimeAnimation;
class PRuntimeWindow;
class PRuntimeCloud;
class PRuntimeConfig;
class PRuntimeCpid;
class PRuntimeCrashCode;
class PRuntimeRestore;
class PRuntimeFactory;
class PRuntimeNotify;
class PRuntimePluginMapping;

// The process-wide root of the library. Each accessor creates its component on first use and
// the root owns it until freeInstance(); an accessor that cannot allocate returns null and
// tries again on its next call. Creation is not locked: the host creates the root and the
// components it needs on one thread before sharing them.
//
// The order of the virtual operations is part of the binary interface; so is the order of the
// component pointers, which is also the order in which the components are destroyed.
class PALLIX_RUNTIME_EXPORT PRuntime {
public:
    static PRuntime* getInstance() noexcept;
    static void freeInstance() noexcept;

    virtual ~PRuntime();

    virtual PRuntimeValue* value();
    virtual PRuntimePortbind* portbind();
    virtual PRuntimeLocation* location();
    virtual PRuntimeShell* shell();
    virtual PRuntimeString* string();
    virtual PRuntimePicture* picture();
    virtual PRuntimeAnimation* animation();
    virtual PRuntimeWindow* window();
    virtual PRuntimeCloud* cloud();
    virtual PRuntimeConfig* config();
    virtual PRuntimeCpid* cpid();
    virtual PRuntimeCrashCode* crashCode();
    virtual PRuntimeRestore* restore();
    virtual PRuntimeFactory* factory();
    virtual PRuntimeNotify* notify();
    virtual PRuntimePluginMapping* pluginMapping();

    PRuntime(const PRuntime&) = delete;
    PRuntime& operator=(const PRuntime&) = delete;

    static PRuntime* _globalFrameworkRuntime;

    // Whether the last file that the library wrote on the calling thread (a configuration
    // setter's save, a store's write) reached the disk; true before the first write. The saving
    // operations return nothing, so a caller that must know asks here right after.
    static bool lastWriteSucceeded() noexcept;

protected:
    PRuntime() noexcept;

private:
    PRuntimeValue* m_value = nullptr;
    PRuntimePortbind* m_portbind = nullptr;
    PRuntimeLocation* m_location = nullptr;
    PRuntimeShell* m_shell = nullptr;
    PRuntimeString* m_string = nullptr;
    PRuntimePicture* m_picture = nullptr;
    PRuntimeAnimation* m_animation = nullptr;
    PRuntimeWindow* m_window = nullptr;
    PRuntimeCloud* m_cloud = nullptr;
    PRuntimeConfig* m_config = nullptr;
    PRuntimeCpid* m_cpid = nullptr;
    PRuntimeCrashCode* m_crashCode = nullptr;
    PRuntimeRestore* m_restore = nullptr;
    PRuntimeFactory* m_factory = nullptr;
    PRuntimeNotify* m_notify = nullptr;
    PRuntimePluginMapping* m_pluginMapping = nullptr;
};
