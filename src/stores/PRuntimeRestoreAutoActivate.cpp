#include "PRuntimeRestoreAutoActivate.h"

PRuntimeRestoreAutoActivate::PRuntimeRestoreAutoActivate() noexcept = default;

PRuntimeRestoreAutoActivate::~PRuntimeRestoreAutoActivate() = default;

bool PRuntimeRestoreAutoActivate::exist(unsigned long long id) const noexcept {
    std::lock_guard<std::mutex> guard(m_mutex);
    return m_choices.count(id) != 0;
}

void PRuntimeRestoreAutoActivate::append(unsigned long long id, bool activate) noexcept {
    remove(id);
    std::lock_guard<std::mutex> guard(m_mutex);
    try {
        m_choices.emplace(id, activate);
    } catch (...) {
        // Out of memory: the device is left without a choice.
    }
}

void PRuntimeRestoreAutoActivate::remove(unsigned long long id) noexcept {
    std::lock_guard<std::mutex> guard(m_mutex);
    m_choices.erase(id);
}

bool PRuntimeRestoreAutoActivate::find(unsigned long long id, bool& activate) const noexcept {
    std::lock_guard<std::mutex> guard(m_mutex);
    const auto found = m_choices.find(id);
    if (found == m_choices.end()) {
        return false;
    }
    activate = found->second;
    return true;
}
