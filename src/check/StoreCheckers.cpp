// Checks of the local stores' files: notifications, port bindings and the custom firmware
// list. Factory information, JSON, is in FactoryChecker.cpp.

#include "Checkers.h"
#include "ValueRules.h"

#include "StoreFormats.h"

#include <set>
#include <string>
#include <vector>

namespace pallix::check {

namespace {

namespace notify = format::notify;

// The entries of a store's list, which the store finds under the root; without it the store
// reads nothing.
std::vector<pugi::xml_node> storeEntries(SourceFile& file, const pugi::xml_node& root,
                                         const char* list, const char* textConsequence) {
    const pugi::xml_node container = root.child(list);
    if (!container) {
        file.error(file.offsetOf(root), inQuotes(root.name()) + " has no element " +
                                            inQuotes(list) + "; the store reads nothing");
    }
    return entries(file, container, textConsequence);
}

// The values of one notification, one child element each; the two layouts differ only in the
// name of the time.
void checkNotification(SourceFile& file, const pugi::xml_node& node, const char* timeElement) {
    for (const notify::Value& value : notify::kValues) {
        const bool isId = format::sameName(value.element, notify::kId);
        const pugi::xml_node element = node.child(
            format::sameName(value.element, notify::kTimestamp) ? timeElement : value.element);
        if (isId && !element.attribute(notify::kValue)) {
            file.error(file.offsetOf(node), std::string("the notification has no ") + notify::kId +
                                                "; it is kept under id 0");
        }
        checkValue(file, element, notify::kValue, value.kind,
                   isId ? "the notification is kept under id {}" : "it is read as {}");
    }
}

} // namespace

void checkNotify(SourceFile& file, const pugi::xml_node& root) {
    std::set<unsigned long long> ids;
    for (const pugi::xml_node& item :
         storeEntries(file, root, notify::kList, kTextIsAnEmptyEntry)) {
        checkNotification(file, item, notify::kTimestamp);
        const unsigned long long id =
            format::readUInt64(item.child(notify::kId).attribute(notify::kValue), 0);
        if (!ids.insert(id).second) {
            file.warning(file.offsetOf(item), "notification " + std::to_string(id) +
                                                  " is listed again; only the first is kept");
        }
    }
}

// One file of the old layout: a single notification under its root.
void checkOldNotify(SourceFile& file, const pugi::xml_node& root) {
    checkNotification(file, root, notify::kOldTimestamp);
}

void checkPortbind(SourceFile& file, const pugi::xml_node& root) {
    namespace portbind = format::portbind;
    const std::string sourceName = portbind::kSource;
    std::set<std::string> sources;
    for (const pugi::xml_node& item :
         storeEntries(file, root, portbind::kList, kTextIsAnEmptyEntry)) {
        const std::string source = item.attribute(portbind::kSource).value();
        if (source.empty()) {
            file.warning(file.offsetOf(item),
                         "a binding without a " + sourceName + " is never found");
        } else if (!sources.insert(source).second) {
            file.warning(file.offsetOf(item, portbind::kSource),
                         sourceName + " " + inQuotes(source) +
                             " is bound again; only the first binding is kept");
        }
        if (!source.empty() && *item.attribute(portbind::kTarget).value() == '\0') {
            file.warning(file.offsetOf(item), sourceName + " " + inQuotes(source) +
                                                  " is bound to an empty " + portbind::kTarget +
                                                  ", which reads like no binding at all");
        }
    }
}

void checkIpsw(SourceFile& file, const pugi::xml_node& root) {
    namespace firmware = format::custom_firmware;
    const std::string url = firmware::kAddress;
    const std::string local = firmware::kLocal;
    std::set<std::string> urls;
    for (const pugi::xml_node& entry : storeEntries(
             file, root, firmware::kList,
             ("is read as an entry without a " + local + " file, which is dropped").c_str())) {
        const std::string address = entry.attribute(firmware::kAddress).value();
        if (!urls.insert(address).second) {
            file.warning(file.offsetOf(entry, firmware::kAddress),
                         url + " " + inQuotes(address) +
                             " is listed again; only the first entry whose file exists is kept");
        }
        // Whether the file exists is the user's machine's business, not the file's; an empty
        // path can never exist.
        if (*entry.attribute(firmware::kLocal).value() == '\0') {
            file.warning(file.offsetOf(entry), url + " " + inQuotes(address) + " has no " + local +
                                                   " file; the entry is dropped when the list is "
                                                   "read");
        }
    }
}

} // namespace pallix::check
