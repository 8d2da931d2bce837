#pragma once

#include "NByteArray.h"
#include "NString.h"
#include "NevorJsonExport.h"

#include <functional>
#include <memory>

// A JSON object with named members, kept in the order in which they were read or appended.
// Byte arrays are stored as base64 text and read back from it.
class NEVORJSON_EXPORT NJsonObject {
public:
    // An empty object that exists.
    NJsonObject();
    // Parses UTF-8 JSON text; the object exists only when the text is an object.
    explicit NJsonObject(const NByteArray& text);
    NJsonObject(const NJsonObject& other);
    NJsonObject& operator=(const NJsonObject& other);
    NJsonObject(NJsonObject&& other) noexcept;
    NJsonObject& operator=(NJsonObject&& other) noexcept;
    ~NJsonObject();

    bool exist() const noexcept;
    bool contains(const NString& name) const;
    std::size_t size() const;

    // Sets the member `name` (replacing a member of that name, which keeps its place).
    void append(const NString& name, const NByteArray& value);
    void append(const NString& name, const NString& value);
    void append(const NString& name, const NJsonObject& value);

    // The member as bytes: decoded base64 text; empty when missing, not text or not base64.
    NByteArray toBytes(const NString& name) const;
    // The member as text; empty when missing or not text.
    NString toText(const NString& name) const;
    // The member as an object; one that does not exist when missing or not an object.
    NJsonObject toObject(const NString& name) const;

    // Calls `visit` with every member name in order.
    void traverse(const std::function<void(const NString& name)>& visit) const;

    // Compact JSON text of the object; "{}" for one that does not exist.
    NString toString() const;

private:
    struct Impl;
    explicit NJsonObject(std::unique_ptr<Impl> impl) noexcept;
    std::unique_ptr<Impl> m_impl;
};
