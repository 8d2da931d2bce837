#pragma once

#include "EPALLIX_RUNTIME_VALUE.h"
#include "NVariant.h"
#include "PallixRuntimeExport.h"

#include <map>

// An in-memory blackboard through which parts of the host application hand each other values:
// one value per key, nothing persisted, no lock (it is used from the interface thread).
class PALLIX_RUNTIME_EXPORT PRuntimeValue {
public:
    PRuntimeValue() noexcept;
    virtual ~PRuntimeValue();

    // Inserts a copy of the value, or assigns it over the stored one.
    virtual void set(EPALLIX_RUNTIME_VALUE key, const NVariant& value);
    // The stored value, or the caller's own `defaultValue` object when the key is absent: the
    // result must not outlive that argument.
    virtual const NVariant& find(EPALLIX_RUNTIME_VALUE key, const NVariant& defaultValue) const;
    // A copy of the stored value, which is then erased; a copy of the default when absent.
    virtual NVariant take(EPALLIX_RUNTIME_VALUE key, const NVariant& defaultValue);
    virtual void remove(EPALLIX_RUNTIME_VALUE key);

    PRuntimeValue(const PRuntimeValue&) = delete;
    PRuntimeValue& operator=(const PRuntimeValue&) = delete;

private:
    std::map<EPALLIX_RUNTIME_VALUE, NVariant> m_values;
};
