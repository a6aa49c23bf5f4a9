#include "Files/FileDescriptor.h"

#include <unistd.h>

namespace orvex::platform {

FileDescriptor::~FileDescriptor() {
    if (isOpen()) {
        ::close(descriptor_);
    }
}

} // namespace orvex::platform
