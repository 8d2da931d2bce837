#include "RunningVersion.h"

#include "ConfigLocations.h"
#include "ConfigurationFormat.h"
#include "XmlFile.h"

namespace pallix::config {

bool readRunningVersion(NString& version) {
    pugi::xml_document document;
    if (!XmlFile::load(document, versionFilePath())) {
        return false;
    }
    namespace format = pallix::format::configuration::version;
    const pugi::xml_node control = document.child(format::kRoot).child(format::kControl);
    if (!control) {
        return false;
    }
    version = NString(control.child(format::kVersion).attribute(format::kValue).as_string(""));
    return true;
}

} // namespace pallix::config
