#pragma once

#include <QByteArrayView>

#include <lcms2.h>

#include <memory>
#include <type_traits>

namespace orvex::platform {

// Owners of the colour engine's handles. Every profile and transform lives in a context of its own, whose errors go
// nowhere: what the engine cannot do it tells by an empty handle.

struct EngineContextDeleter {
    void operator()(cmsContext context) const { cmsDeleteContext(context); }
};

struct EngineProfileDeleter {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};

struct EngineTransformDeleter {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};

using EngineContext = std::unique_ptr<std::remove_pointer_t<cmsContext>, EngineContextDeleter>;
using EngineProfile = std::unique_ptr<void, EngineProfileDeleter>;
using EngineTransform = std::unique_ptr<void, EngineTransformDeleter>;

/// A silent context. Raises std::bad_alloc.
[[nodiscard]] EngineContext makeEngineContext();

/// The profile of these bytes, of which the engine makes a copy; empty if it cannot open it.
[[nodiscard]] EngineProfile openEngineProfile(const EngineContext& context, QByteArrayView data);

/// Every sample is computed from the profiles themselves, and nothing is shared between the threads that convert.
inline constexpr cmsUInt32Number exactTransformFlags = cmsFLAGS_NOCACHE | cmsFLAGS_NOOPTIMIZE;

} // namespace orvex::platform
