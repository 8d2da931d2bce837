#include "PRuntime.h"

#include "WriteOutcome.h"

#include "PRuntimeAnimation.h"
#include "PRuntimeCloud.h"
#include "PRuntimeConfig.h"
#include "PRuntimeCpid.h"
#include "PRuntimeCrashCode.h"
#include "PRuntimeFactory.h"
#include "PRuntimeLocation.h"
#include "PRuntimeNotify.h"
#include "PRuntimePicture.h"
#include "PRuntimePluginMapping.h"
#include "PRuntimePortbind.h"
#include "PRuntimeRestore.h"
#include "PRuntimeShell.h"
#include "PRuntimeString.h"
#include "PRuntimeValue.h"
#include "PRuntimeWindow.h"

#include <new>

namespace {

// The lazy-creation pattern of every accessor: construct only when the non-throwing allocation
// succeeded, and leave the slot empty on failure so that the next call tries again.
template <typename Component> Component* obtain(Component*& slot) noexcept {
    if (slot == nullptr) {
        slot = new (std::nothrow) Component();
    }
    return slot;
}

} // namespace

PRuntime* PRuntime::_globalFrameworkRuntime = nullptr;

PRuntime::PRuntime() noexcept = default;

PRuntime::~PRuntime() {
    delete m_value;
    delete m_portbind;
    delete m_location;
    delete m_shell;
    delete m_string;
    delete m_picture;
    delete m_animation;
    delete m_window;
    delete m_cloud;
    delete m_config;
    delete m_cpid;
    delete m_crashCode;
    delete m_restore;
    delete m_factory;
    delete m_notify;
    delete m_pluginMapping;
}

PRuntime* PRuntime::getInstance() noexcept {
    if (_globalFrameworkRuntime == nullptr) {
        _globalFrameworkRuntime = new (std::nothrow) PRuntime();
    }
    return _globalFrameworkRuntime;
}

bool PRuntime::lastWriteSucceeded() noexcept {
    return pallix::lastWriteSucceeded();
}

void PRuntime::freeInstance() noexcept {
    if (_globalFrameworkRuntime != nullptr) {
        delete _globalFrameworkRuntime;
        _globalFrameworkRuntime = nullptr;
    }
}

PRuntimeValue* PRuntime::value() {
    return obtain(m_value);
}

PRuntimePortbind* PRuntime::portbind() {
    return obtain(m_portbind);
}

PRuntimeLocation* PRuntime::location() {
    return obtain(m_location);
}

PRuntimeShell* PRuntime::shell() {
    return obtain(m_shell);
}

PRuntimeString* PRuntime::string() {
    return obtain(m_string);
}

PRuntimePicture* PRuntime::picture() {
    return obtain(m_picture);
}

PRuntimeAnimation* PRuntime::animation() {
    return obtain(m_animation);
}

PRuntimeWindow* PRuntime::window() {
    return obtain(m_window);
}

PRuntimeCloud* PRuntime::cloud() {
    return obtain(m_cloud);
}

PRuntimeConfig* PRuntime::config() {
    return obtain(m_config);
}

PRuntimeCpid* PRuntime::cpid() {
    return obtain(m_cpid);
}

PRuntimeCrashCode* PRuntime::crashCode() {
    return obtain(m_crashCode);
}

PRuntimeRestore* PRuntime::restore() {
    return obtain(m_restore);
}

PRuntimeFactory* PRuntime::factory() {
    return obtain(m_factory);
}

PRuntimeNotify* PRuntime::notify() {
    return obtain(m_notify);
}

PRuntimePluginMapping* PRuntime::pluginMapping() {
    return obtain(m_pluginMapping);
}
