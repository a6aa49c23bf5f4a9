#include "Color/ColorEngine.h"

#include <new>

namespace orvex::platform {

EngineContext makeEngineContext() {
    EngineContext context(cmsCreateContext(nullptr, nullptr));
    if (!context) {
        throw std::bad_alloc();
    }
    cmsSetLogErrorHandlerTHR(context.get(), [](cmsContext, cmsUInt32Number, const char*) {});
    return context;
}

EngineProfile openEngineProfile(const EngineContext& context, QByteArrayView data) {
    return EngineProfile(
        cmsOpenProfileFromMemTHR(context.get(), data.data(), static_cast<cmsUInt32Number>(data.size())));
}

} // namespace orvex::platform
