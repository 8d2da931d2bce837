#pragma once

#include <pugixml.hpp>

namespace pallix::config {

// Sets the attribute to the double exactly as pugixml's set_value(double) does, but formats
// each value only once: the configuration's places are written whole on every save, and
// pugixml's formatting of a double (printf's "%.17g") cost more than the rest of a save
// together. The text kept for a value is the one that pugixml itself gave it, and is kept only
// while the formatting's one dependence, the decimal point of the thread's locale, stays.
void setDouble(pugi::xml_attribute attribute, double value);

} // namespace pallix::config
