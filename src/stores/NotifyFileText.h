#pragma once

#include "PRuntimeNotifyItem.h"

#include <map>
#include <string>

class PRuntimeNotify;

namespace pallix::notify {

// The text of "/notify.xml", kept item by item between two writes of one store, so that a write
// renders only the items that changed since the one before. Rendering every item again, into a
// document built from scratch, made an append on a large store cost several times the disk's
// own work; now a write costs about as much as putting its bytes on the disk.
//
// pugixml stays the writer: every item's text is its rendering of that item at the item's depth
// in the document, and the text around the items is its rendering of the document without
// them, so the file is byte for byte the whole document saved at once.
class FileText {
public:
    // Forgets the text of the item stored under id: it is about to change.
    void changed(unsigned long long id);

    // The whole file for these items, rendering those whose text is not kept. False, with
    // nothing rendered, only if pugixml laid out the document unlike any version does.
    bool render(const std::map<unsigned long long, PRuntimeNotifyItem>& items, std::string& bytes);

private:
    // Ordered like the store's map, so that one walk over both pairs them up.
    std::map<unsigned long long, std::string> m_texts;
};

// The texts of one store. They live beside the store rather than in it, whose layout is part of
// the binary interface; the store's own lock guards them like its map.
FileText& fileTextOf(const PRuntimeNotify* store);
// Drops the texts of a store that goes away.
void forgetFileText(const PRuntimeNotify* store);

} // namespace pallix::notify
