#pragma once

#include "Failure.h"

namespace orvex::platform {

/// An image that cannot be read: no image, damaged, cut off, or of a kind that is not supported. The message is the
/// decoder's detail for developers; the kit puts its own words before the operator.
class ImageError : public Failure {
public:
    explicit ImageError(const QString& detail) : Failure(detail) {}
};

} // namespace orvex::platform
