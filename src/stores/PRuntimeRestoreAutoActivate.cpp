#include "PRuntimeRestoreAutoActivate.h"

#include "Operation.h"

PRuntimeRestoreAutoActivate::PRuntimeRestoreAutoActivate() noexcept = default;

PRuntimeRestoreAutoActivate::~PRuntimeRestoreAutoActivate() = default;

bool PRuntimeRestoreAutoActivate::exist(unsigned long long id) const {
    return pallix::operation([&] {
        std::lock_guard<std::mutex> guard(m_mutex);
        return m_choices.count(id) != 0;
    });
}

void PRuntimeRestoreAutoActivate::append(unsigned long long id, bool activate) {
    pallix::operation([&] {
        remove(id);
        std::lock_guard<std::mutex> guard(m_mutex);
        m_choices.emplace(id, activate);
    });
}

void PRuntimeRestoreAutoActivate::remove(unsigned long long id) {
    pallix::operation([&] {
        std::lock_guard<std::mutex> guard(m_mutex);
        m_choices.erase(id);
    });
}

bool PRuntimeRestoreAutoActivate::find(unsigned long long id, bool& activate) const {
    return pallix::operation([&] {
        std::lock_guard<std::mutex> guard(m_mutex);
        const auto found = m_choices.find(id);
        if (found == m_choices.end()) {
            return false;
        }
        activate = found->second;
        return true;
    });
}
