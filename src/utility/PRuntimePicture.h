#pragma once

#include "PallixRuntimeExport.h"

#include <QPixmap>

// Fills a fixed-size box from a picture by cropping its centre. It holds no state; pictures
// need the toolkit's GUI application.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimePicture {
public:
    PRuntimePicture() noexcept;
    virtual ~PRuntimePicture();

    // A `width` by `height` picture that covers the box: the picture scaled to the box's width
    // and cut vertically from its middle when that is tall enough, otherwise scaled to the
    // box's height and cut horizontally from its middle, otherwise (rounding left both short)
    // scaled to cover the box without a cut.
    virtual QPixmap middle(const QPixmap& source, int width, int height) const;

    PRuntimePicture(const PRuntimePicture&) = delete;
    PRuntimePicture& operator=(const PRuntimePicture&) = delete;
};
