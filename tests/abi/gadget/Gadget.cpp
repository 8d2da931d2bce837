#include "Gadget.h"

Gadget::Gadget() noexcept : m_value(1) {}

Gadget::~Gadget() = default;

int Gadget::first() const noexcept {
    return m_value;
}

int Gadget::second() const noexcept {
    return m_value + 1;
}

#ifdef GADGET_ADDED
int Gadget::third() const noexcept {
    return m_value + 2;
}

int gadgetTotal() noexcept {
    return 3;
}
#endif

#ifndef GADGET_REMOVED
int gadgetCount() noexcept {
    return 1;
}
#endif
