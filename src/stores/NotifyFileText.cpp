#include "NotifyFileText.h"

#include "StoreFormats.h"
#include "XmlFile.h"
#include "XmlText.h"

#include <memory>
#include <mutex>
#include <unordered_map>

namespace layout = pallix::format::notify;

namespace pallix::notify {

namespace {

// An item element sits under the root and the list.
constexpr unsigned int kItemDepth = 2;

// The document without its items, rendered once: the text in front of the first item, the text
// after the last one, and the whole file of an empty store (whose list closes itself).
struct Frame {
    bool usable = false;
    std::string head;
    std::string tail;
    std::string empty;
};

Frame makeFrame() {
    pugi::xml_document document;
    pugi::xml_node list = document.append_child(layout::kRoot).append_child(layout::kList);
    XmlFile::prependDeclaration(document, "utf-8", false);
    Frame frame;
    XmlText::appendDocument(frame.empty, document);
    const pugi::xml_node marker = list.append_child(layout::kItem);
    frame.usable = XmlText::textAround(document, marker, kItemDepth, frame.head, frame.tail);
    return frame;
}

const Frame& frame() {
    static const Frame rendered = makeFrame();
    return rendered;
}

// One item element with its nine children, filled in anew for every item that it renders.
class ItemRenderer {
public:
    ItemRenderer() {
        pugi::xml_node item = m_document.append_child(layout::kItem);
        m_item = item;
        for (std::size_t i = 0; i < kFields; ++i) {
            m_values[i] = item.append_child(kNames[i]).append_attribute(layout::kValue);
        }
    }

    std::string render(const PRuntimeNotifyItem& item) {
        m_values[0].set_value(item.id());
        m_values[1].set_value(item.userID());
        m_values[2].set_value(item.title().data());
        m_values[3].set_value(item.timestamp());
        m_values[4].set_value(item.url().data());
        m_values[5].set_value(item.isAlreadyRead());
        m_values[6].set_value(item.isPopup());
        // Deliberately from the read flag: the application treats a notification the user has
        // read as one that no longer needs to pop up. Readers take it as alreadyPopup.
        m_values[7].set_value(item.isAlreadyRead());
        m_values[8].set_value(item.isRemove());
        std::string text;
        XmlText::appendNode(text, m_item, kItemDepth);
        return text;
    }

private:
    static constexpr std::size_t kFields = 9;
    static constexpr const char* kNames[kFields] = {
        layout::kId,   layout::kUserId, layout::kTitle,        layout::kTimestamp, layout::kAddress,
        layout::kRead, layout::kPopup,  layout::kAlreadyPopup, layout::kRemove};

    pugi::xml_document m_document;
    pugi::xml_node m_item;
    pugi::xml_attribute m_values[kFields];
};

// Every living store's texts. Never destroyed: a store that the process destroys at exit may
// outlive any static object.
struct Registry {
    std::mutex mutex;
    std::unordered_map<const PRuntimeNotify*, std::unique_ptr<FileText>> texts;
};

Registry& registry() {
    static Registry* const instance = new Registry;
    return *instance;
}

} // namespace

void FileText::changed(unsigned long long id) {
    m_texts.erase(id);
}

bool FileText::render(const std::map<unsigned long long, PRuntimeNotifyItem>& items,
                      std::string& bytes) {
    const Frame& document = frame();
    if (!document.usable) {
        return false;
    }
    if (items.empty()) {
        m_texts.clear();
        bytes = document.empty;
        return true;
    }

    // Pair the kept texts with the items; an item without one is rendered now, a text without
    // its item goes.
    std::unique_ptr<ItemRenderer> renderer;
    std::size_t size = document.head.size() + document.tail.size();
    auto text = m_texts.begin();
    for (const auto& entry : items) {
        while (text != m_texts.end() && text->first < entry.first) {
            text = m_texts.erase(text);
        }
        if (text == m_texts.end() || text->first != entry.first) {
            if (!renderer) {
                renderer = std::make_unique<ItemRenderer>();
            }
            text = m_texts.emplace_hint(text, entry.first, renderer->render(entry.second));
        }
        size += text->second.size();
        ++text;
    }
    m_texts.erase(text, m_texts.end());

    bytes.clear();
    bytes.reserve(size);
    bytes += document.head;
    for (const auto& kept : m_texts) {
        bytes += kept.second;
    }
    bytes += document.tail;
    return true;
}

FileText& fileTextOf(const PRuntimeNotify* store) {
    Registry& shared = registry();
    std::lock_guard<std::mutex> lock(shared.mutex);
    std::unique_ptr<FileText>& texts = shared.texts[store];
    if (!texts) {
        texts = std::make_unique<FileText>();
    }
    return *texts;
}

void forgetFileText(const PRuntimeNotify* store) {
    Registry& shared = registry();
    std::lock_guard<std::mutex> lock(shared.mutex);
    shared.texts.erase(store);
}

} // namespace pallix::notify
