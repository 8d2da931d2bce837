#include "RunningVersion.h"

#include "ConfigLocations.h"
#include "XmlFile.h"

namespace pallix::config {

bool readRunningVersion(NString& version) {
    pugi::xml_document document;
    if (!XmlFile::load(document, versionFilePath())) {
        return false;
    }
    const pugi::xml_node control = document.child("root").child("Control");
    if (!control) {
        return false;
    }
    version = NString(control.child("Version").attribute("VALUE").as_string(""));
    return true;
}

} // namespace pallix::config
