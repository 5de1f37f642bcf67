#include "zel_effects/offscreenContext.h"

#include "platform/glPlatform.h"

namespace zellab {

OffscreenContext::OffscreenContext() {
    const platform::GlContext before = platform::currentGlContext();
    m_before = {before.context, before.display, before.surface};
    platform::GlCreation made = platform::createGlContext(nullptr);
    m_failedCall = made.failedCall;
    if (!m_failedCall && !platform::makeGlContextCurrent(made.context)) {
        platform::destroyGlContext(made.context);
        m_failedCall = "make current";
    }
    if (!m_failedCall) m_own = {made.context.context, made.context.display, made.context.surface};
}

OffscreenContext::~OffscreenContext() {
    if (m_failedCall) return;
    platform::GlContext own{m_own.context, m_own.display, m_own.surface};
    platform::destroyGlContext(own);
    if (m_before.context)
        platform::makeGlContextCurrent({m_before.context, m_before.display, m_before.surface});
}

}  // namespace zellab
