#pragma once

#include <pugixml.hpp>

#include <cstddef>
#include <string>

namespace pallix {

// pugixml's serialisation with the library's layout (a tab per level, indented formatting only,
// UTF-8), appended to a string the caller owns: the text goes to the file without a stream in
// between and without a copy of its own.
class XmlText {
public:
    // Room for a small file in one allocation: pugixml hands the text over in pieces of a few
    // kilobytes, and a configuration file is some kilobytes long.
    static constexpr std::size_t kSmallFile = 16 * 1024;

    // The whole document, as pugi::xml_document::save() writes it.
    static void appendDocument(std::string& text, const pugi::xml_document& document);

    // One node with everything under it, exactly as it appears in its document's text when it
    // sits `depth` levels below the document (the root element at 0), up to and including the
    // line break after it.
    static void appendNode(std::string& text, const pugi::xml_node& node, unsigned int depth);

    // The document's text before and after the text of `marker`, an element that sits `depth`
    // levels below the document: with the marker taken for a run of siblings rendered one by
    // one with appendNode(), head + their texts + tail is the text of the document holding
    // them. False, with nothing set, if the marker's text is not part of the document's, which
    // no pugixml does.
    static bool textAround(const pugi::xml_document& document, const pugi::xml_node& marker,
                           unsigned int depth, std::string& head, std::string& tail);
};

} // namespace pallix
