#pragma once

// A small library in several versions, built by the test of scripts/check-abi.sh: the first
// version is the baseline, and each macro gives a later version with one kind of change.
//   GADGET_ADDED    adds a non-virtual member function and a free function (compatible)
//   GADGET_SWAPPED  swaps the virtual table slots of first() and second() (a break)
//   GADGET_GROWN    adds a data member, changing the record's size (a break)
//   GADGET_REMOVED  removes the free function gadgetCount() (a break)

#define GADGET_EXPORT __attribute__((visibility("default")))

class GADGET_EXPORT Gadget {
public:
    Gadget() noexcept;
    virtual ~Gadget();

#ifndef GADGET_SWAPPED
    virtual int first() const noexcept;
    virtual int second() const noexcept;
#else
    virtual int second() const noexcept;
    virtual int first() const noexcept;
#endif
#ifdef GADGET_ADDED
    int third() const noexcept;
#endif

private:
    int m_value;
#ifdef GADGET_GROWN
    long m_extra = 0;
#endif
};

#ifndef GADGET_REMOVED
GADGET_EXPORT int gadgetCount() noexcept;
#endif
#ifdef GADGET_ADDED
GADGET_EXPORT int gadgetTotal() noexcept;
#endif
