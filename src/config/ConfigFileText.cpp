#include "ConfigFileText.h"

#include "ConfigurationFormat.h"
#include "DoubleText.h"
#include "XmlFile.h"
#include "XmlText.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <list>
#include <map>

namespace cfg = pallix::format::configuration;

namespace pallix::config {

namespace {

// Every element of the file sits right under the root.
constexpr unsigned int kElementDepth = 1;

using Flags = std::map<NString, bool>;
using Directories = std::map<NString, NString>;
using Paths = std::list<NString>;
using Favourites = std::list<_PALLIX_RUNTIME_CONFIG_FC>;
using Places = std::list<_PALLIX_RUNTIME_CONFIG_VL>;

// ---- The elements, written as the file has always had them.

void writeValue(pugi::xml_node& root, const char* element, const NString& value) {
    root.append_child(element).append_attribute(cfg::kValue).set_value(value.data());
}

template <typename Number>
void writeNumber(pugi::xml_node& root, const char* element, Number value) {
    root.append_child(element).append_attribute(cfg::kValue).set_value(value);
}

void writeScalars(pugi::xml_node& root, const _PALLIX_RUNTIME_CONFIG& config) {
    writeValue(root, cfg::kLastVersion, config.lastVersion);
    writeNumber(root, cfg::kPopupTimeADAPP, config.popupTimeADAPP);
    writeNumber(root, cfg::kSameTimeDownloadNumber, config.sameTimeDownloadNumber);
    writeNumber(root, cfg::kDownloadMaxSpeed, config.downloadMaxSpeed);
    writeValue(root, cfg::kLastSkin, config.lastSkin);
    writeNumber(root, cfg::kLastLanguage, static_cast<int>(config.lastLanguage));
    writeNumber(root, cfg::kRestoreCore, static_cast<int>(config.restoreCore));
}

void writeFlags(pugi::xml_node& root, const char* element, const Flags& flags) {
    pugi::xml_node list = root.append_child(element);
    for (const auto& flag : flags) {
        pugi::xml_node item = list.append_child(cfg::kItem);
        item.append_attribute(cfg::kName).set_value(flag.first.data());
        item.append_attribute(cfg::kFlag).set_value(flag.second);
    }
}

void writeDirectories(pugi::xml_node& root, const char* element, const Directories& directories) {
    pugi::xml_node list = root.append_child(element);
    for (const auto& entry : directories) {
        pugi::xml_node item = list.append_child(cfg::kItem);
        item.append_attribute(cfg::kName).set_value(entry.first.data());
        item.append_attribute(cfg::kPath).set_value(entry.second.data());
    }
}

void writePaths(pugi::xml_node& root, const char* element, const Paths& paths) {
    pugi::xml_node list = root.append_child(element);
    for (const NString& path : paths) {
        list.append_child(cfg::kItem).append_attribute(cfg::kPath).set_value(path.data());
    }
}

void writeFavourites(pugi::xml_node& root, const char* element, const Favourites& favourites) {
    pugi::xml_node list = root.append_child(element);
    for (const _PALLIX_RUNTIME_CONFIG_FC& favourite : favourites) {
        pugi::xml_node item = list.append_child(cfg::kItem);
        item.append_attribute(cfg::kPath).set_value(favourite.Path.data());
        item.append_attribute(cfg::kRootFlag).set_value(favourite.Root);
    }
}

void writePlaces(pugi::xml_node& root, const char* element, const Places& places) {
    pugi::xml_node list = root.append_child(element);
    for (const _PALLIX_RUNTIME_CONFIG_VL& place : places) {
        pugi::xml_node item = list.append_child(cfg::kItem);
        setDouble(item.append_attribute(cfg::kX), place.X);
        setDouble(item.append_attribute(cfg::kY), place.Y);
        item.append_attribute(cfg::kLocation).set_value(place.Location.data());
    }
}

// ---- Whether a kept copy still renders as the record's content does.

bool sameBits(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool same(const Flags& a, const Flags& b) {
    return a == b;
}
bool same(const Directories& a, const Directories& b) {
    return a == b;
}
bool same(const Paths& a, const Paths& b) {
    return a == b;
}
bool same(const Favourites& a, const Favourites& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](const _PALLIX_RUNTIME_CONFIG_FC& x, const _PALLIX_RUNTIME_CONFIG_FC& y) {
                          return x.Root == y.Root && x.Path == y.Path;
                      });
}
// By the bits: 0 and -0 are written differently, and a NaN must not miss its own copy forever.
bool same(const Places& a, const Places& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](const _PALLIX_RUNTIME_CONFIG_VL& x, const _PALLIX_RUNTIME_CONFIG_VL& y) {
                          return sameBits(x.X, y.X) && sameBits(x.Y, y.Y) &&
                                 x.Location == y.Location;
                      });
}

// Renders the elements that `write` appends under a root, each at its depth in the file.
template <typename Write> void render(std::string& text, Write write) {
    pugi::xml_document document;
    pugi::xml_node root = document.append_child(cfg::kRoot);
    write(root);
    for (pugi::xml_node element = root.first_child(); element; element = element.next_sibling()) {
        XmlText::appendNode(text, element, kElementDepth);
    }
}

// One container's element, kept rendered with a copy of what it was rendered from.
template <typename Content> class Section {
public:
    using Write = void (*)(pugi::xml_node&, const char*, const Content&);

    Section(const char* element, Write write) : m_element(element), m_write(write) {}

    const std::string& text(const Content& content) {
        if (!m_rendered || !same(m_content, content)) {
            m_text.clear();
            render(m_text, [&](pugi::xml_node& root) { m_write(root, m_element, content); });
            m_content = content;
            m_rendered = true;
        }
        return m_text;
    }

private:
    const char* m_element;
    Write m_write;
    bool m_rendered = false;
    Content m_content;
    std::string m_text;
};

// The document without its elements, rendered once.
struct Frame {
    bool usable = false;
    std::string head;
    std::string tail;
};

Frame makeFrame() {
    pugi::xml_document document;
    pugi::xml_node root = document.append_child(cfg::kRoot);
    XmlFile::prependDeclaration(document, "utf-8", false);
    const pugi::xml_node marker = root.append_child(cfg::kLastVersion);
    Frame frame;
    frame.usable = XmlText::textAround(document, marker, kElementDepth, frame.head, frame.tail);
    return frame;
}

const Frame& frame() {
    static const Frame rendered = makeFrame();
    return rendered;
}

// Per thread, so that no lock is needed: the configuration is saved from one thread.
struct Sections {
    Section<Flags> status{cfg::kStatus, writeFlags};
    Section<Directories> directory{cfg::kDirectory, writeDirectories};
    Section<Flags> tools{cfg::kTools, writeFlags};
    Section<Paths> customBackup{cfg::kCustomBackup, writePaths};
    Section<Favourites> fileFavorites{cfg::kFileFavorites, writeFavourites};
    Section<Flags> autoImport{cfg::kAutoImport, writeFlags};
    Section<Places> virtualLocation{cfg::kVirtualLocation, writePlaces};
    Section<Places> locationFavorites{cfg::kLocationFavorites, writePlaces};
};

thread_local Sections sections;

} // namespace

bool renderConfiguration(const _PALLIX_RUNTIME_CONFIG& config, std::string& bytes) {
    const Frame& document = frame();
    if (!document.usable) {
        return false;
    }
    // The scalars change with most setters and cost little: rendered every time.
    std::string scalars;
    render(scalars, [&](pugi::xml_node& root) { writeScalars(root, config); });

    const std::string* const parts[] = {
        &scalars,
        &sections.status.text(config.status),
        &sections.directory.text(config.directory),
        &sections.tools.text(config.tools),
        &sections.customBackup.text(config.customBackup),
        &sections.fileFavorites.text(config.fileFavorites),
        &sections.autoImport.text(config.autoImport),
        &sections.virtualLocation.text(config.virtualLocation),
        &sections.locationFavorites.text(config.locationFavorites),
    };
    std::size_t size = document.head.size() + document.tail.size();
    for (const std::string* part : parts) {
        size += part->size();
    }
    bytes.clear();
    bytes.reserve(size);
    bytes += document.head;
    for (const std::string* part : parts) {
        bytes += *part;
    }
    bytes += document.tail;
    return true;
}

} // namespace pallix::config
