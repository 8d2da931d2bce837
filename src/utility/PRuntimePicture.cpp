#include "PRuntimePicture.h"

PRuntimePicture::PRuntimePicture() noexcept = default;

PRuntimePicture::~PRuntimePicture() = default;
