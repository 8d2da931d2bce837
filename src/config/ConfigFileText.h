#pragma once

#include "_PALLIX_RUNTIME_CONFIG.h"

#include <string>

namespace pallix::config {

// The text of "/configure.xml" for the record. Every setter saves the whole file, though it
// changes one field; so each container's element is kept rendered, with a copy of what it was
// rendered from, and rendered again only when its content differs. The record is a public
// global that the host may change directly, so the content is compared, not tracked.
//
// pugixml stays the writer: each element's text is its rendering of that element at its depth,
// and the text around them its rendering of the document, so the file is byte for byte the
// whole document saved at once. False, with nothing rendered, only if pugixml laid out the
// document unlike any version does.
bool renderConfiguration(const _PALLIX_RUNTIME_CONFIG& config, std::string& bytes);

} // namespace pallix::config
