// Feeds arbitrary bytes to the custom firmware store as its "/RestoreIpsw.xml", then checks
// that every answer survives the store's own rewrite unchanged.

#include "FuzzConfigDirectory.h"

#include "PRuntimeRestoreCustomFirmware.h"

#include <pugixml.hpp>

#include <cstdlib>
#include <set>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pallix::fuzz::writeInput("RestoreIpsw.xml", data, size);

    // The addresses that the input names, found independently of the store.
    std::set<std::string> urls;
    pugi::xml_document document;
    if (document.load_buffer(data, size, pugi::parse_default, pugi::encoding_utf8)) {
        for (pugi::xml_node entry : document.child("Rilo").child("MATCH").children()) {
            urls.insert(entry.attribute("URL").as_string());
        }
    }
    const NString absent("\x01 not an address \x02");
    if (urls.count(absent.toStdString()) != 0) {
        return 0;
    }

    PRuntimeRestoreCustomFirmware store;
    std::vector<NString> answers;
    for (const std::string& url : urls) {
        NString local;
        const bool found = store.find(NString(url), local);
        if (found != store.find(NString(url), nullptr) || local != store.find(NString(url))) {
            std::abort();
        }
        answers.push_back(local);
    }
    // Rewrites the file without changing any answer.
    store.remove(absent);
    PRuntimeRestoreCustomFirmware reloaded;
    std::size_t index = 0;
    for (const std::string& url : urls) {
        if (reloaded.find(NString(url)) != answers[index++]) {
            std::abort();
        }
    }
    return 0;
}
