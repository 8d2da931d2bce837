#include "PRuntimePicture.h"

#include "Operation.h"

PRuntimePicture::PRuntimePicture() noexcept = default;

PRuntimePicture::~PRuntimePicture() = default;

QPixmap PRuntimePicture::middle(const QPixmap& source, int width, int height) const {
    return pallix::operation([&] {
        // Both candidates first: the width-fitted one wins whenever it is tall enough, even
        // when the other would fit as well.
        const QPixmap byWidth = source.scaledToWidth(width, Qt::SmoothTransformation);
        const QPixmap byHeight = source.scaledToHeight(height, Qt::SmoothTransformation);
        if (byWidth.height() >= height) {
            return byWidth.copy(0, (byWidth.height() - height) / 2, width, height);
        }
        if (byHeight.width() >= width) {
            return byHeight.copy((byHeight.width() - width) / 2, 0, width, height);
        }
        return source.scaled(width, height, Qt::KeepAspectRatioByExpanding,
                             Qt::SmoothTransformation);
    });
}
