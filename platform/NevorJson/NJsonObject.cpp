#include "NJsonObject.h"

#include "Base64.h"

#include <nlohmann/json.hpp>

#include <utility>

using Json = nlohmann::ordered_json;

struct NJsonObject::Impl {
    Json value = Json::object();
};

NJsonObject::NJsonObject() : m_impl(std::make_unique<Impl>()) {}

NJsonObject::NJsonObject(std::unique_ptr<Impl> impl) noexcept : m_impl(std::move(impl)) {}

NJsonObject::NJsonObject(const NByteArray& text) : m_impl(std::make_unique<Impl>()) {
    m_impl->value = Json::parse(text.data(), text.data() + text.size(), nullptr,
                                /*allow_exceptions=*/false);
}

NJsonObject::NJsonObject(const NJsonObject& other)
    : m_impl(std::make_unique<Impl>(*other.m_impl)) {}

NJsonObject& NJsonObject::operator=(const NJsonObject& other) {
    if (this != &other) {
        m_impl = std::make_unique<Impl>(*other.m_impl);
    }
    return *this;
}

NJsonObject::NJsonObject(NJsonObject&& other) noexcept
    : m_impl(std::exchange(other.m_impl, std::make_unique<Impl>())) {}

NJsonObject& NJsonObject::operator=(NJsonObject&& other) noexcept {
    std::swap(m_impl, other.m_impl);
    return *this;
}

NJsonObject::~NJsonObject() = default;

bool NJsonObject::exist() const noexcept {
    return m_impl->value.is_object();
}

bool NJsonObject::contains(const NString& name) const {
    return exist() && m_impl->value.contains(name.toStdString());
}

std::size_t NJsonObject::size() const {
    return exist() ? m_impl->value.size() : 0;
}

void NJsonObject::append(const NString& name, const NByteArray& value) {
    append(name, NString(nevor::json::encodeBase64(value.toStdString())));
}

void NJsonObject::append(const NString& name, const NString& value) {
    if (!exist()) {
        m_impl->value = Json::object();
    }
    m_impl->value[name.toStdString()] = value.toStdString();
}

void NJsonObject::append(const NString& name, const NJsonObject& value) {
    if (!exist()) {
        m_impl->value = Json::object();
    }
    m_impl->value[name.toStdString()] = value.exist() ? value.m_impl->value : Json::object();
}

NByteArray NJsonObject::toBytes(const NString& name) const {
    const NString text = toText(name);
    auto bytes = nevor::json::decodeBase64(text.toStdString());
    return bytes ? NByteArray(std::move(*bytes)) : NByteArray();
}

NString NJsonObject::toText(const NString& name) const {
    if (!contains(name)) {
        return NString();
    }
    const Json& member = m_impl->value.at(name.toStdString());
    return member.is_string() ? NString(member.get<std::string>()) : NString();
}

NJsonObject NJsonObject::toObject(const NString& name) const {
    auto impl = std::make_unique<Impl>();
    impl->value = Json(); // null: does not exist
    if (contains(name)) {
        const Json& member = m_impl->value.at(name.toStdString());
        if (member.is_object()) {
            impl->value = member;
        }
    }
    return NJsonObject(std::move(impl));
}

void NJsonObject::traverse(const std::function<void(const NString& name)>& visit) const {
    if (!visit || !exist()) {
        return;
    }
    for (const auto& member : m_impl->value.items()) {
        visit(NString(member.key()));
    }
}

NString NJsonObject::toString() const {
    if (!exist()) {
        return NString("{}");
    }
    // Invalid UTF-8 in names or text is replaced rather than failing the whole document.
    return NString(m_impl->value.dump(-1, ' ', false, Json::error_handler_t::replace));
}
