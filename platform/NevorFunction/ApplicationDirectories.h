#pragma once

#include "NString.h"

#include <mutex>
#include <optional>

namespace nevor::function {

// A directory setting that the application may override; until it does, the default is
// computed on each read so that it follows the environment (HOME and the like).
class DirectorySetting {
public:
    template <typename Default> NString get(Default computeDefault) const {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            if (m_value) {
                return *m_value;
            }
        }
        return computeDefault();
    }

    void set(const NString& value) {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_value = value;
    }

private:
    mutable std::mutex m_mutex;
    std::optional<NString> m_value;
};

// An environment directory such as XDG_CONFIG_HOME, or home + fallback when it is unset.
NString environmentDirectory(const char* variable, const char* homeRelativeFallback);

} // namespace nevor::function
