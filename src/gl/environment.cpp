#include "gl/environment.h"

#include "gl/glLog.h"
#include "gl/utils.h"

namespace zellab::gl {

namespace {

/// Shaders of this version are what the renderer is written in.
constexpr int kNeededGlsl = 330;

}  // namespace

Environment::Environment(int window, Environment* share, bool glsl330)
    : m_borrowed(false), m_glsl330(share ? share->m_glsl330 : glsl330) {
    if (window != 0) m_externalWindow = window;
    const bool made = initializePlatform(share);
    const char* kind = share ? "shared " : "";
    const char* place = window != 0 ? "on-screen" : "off-screen";
    if (made)
        logEnvironment(kEnvironmentDebug, "Environment:: Initialize %s%s environment success !", kind, place);
    else
        logEnvironment(kEnvironmentError, "Environment:: Initialize %s%s environment failed !", kind, place);
}

Environment::Environment() : m_context(platform::currentGlContext()), m_borrowed(true), m_glsl330(true) {
    m_glsl330 = Utils::shadingLanguageVersion() >= kNeededGlsl;
    if (m_context.context)
        logEnvironment(kEnvironmentDebug, "Environment:: Get current environment success !");
    else
        logEnvironment(kEnvironmentError, "Environment:: Get current environment failed !");
}

Environment::~Environment() {
    if (m_borrowed) return;
    if (terminate())
        logEnvironment(kEnvironmentDebug, "Environment:: Termination screen environment success !");
    else
        logEnvironment(kEnvironmentError, "Environment:: Termination screen environment failed !");
}

void Environment::makeCurrent() const {
    platform::makeGlContextCurrent(m_context);
}

bool Environment::initializePlatform(const Environment* share) {
    const platform::GlCreation creation = platform::createGlContext(share ? &share->m_context : nullptr);
    m_context = creation.context;
    if (!creation.failedCall) return true;
    logEnvironment(kEnvironmentError, "Environment::InitializeEnvironment_%s %s failed !",
                   platform::glPlatformName(), creation.failedCall);
    return false;
}

bool Environment::terminate() {
    platform::destroyGlContext(m_context);
    return true;
}

EnvironmentHolder::EnvironmentHolder(int window, const EnvironmentHolder* share, bool glsl330)
    : m_environment(
          std::make_unique<Environment>(window, share ? share->m_environment.get() : nullptr, glsl330)) {}

EnvironmentHolder EnvironmentHolder::current() {
    EnvironmentHolder holder;
    holder.m_environment = std::make_unique<Environment>();
    return holder;
}

void EnvironmentHolder::makeCurrent() const {
    if (m_environment) m_environment->makeCurrent();
}

void EnvironmentHolder::doneCurrent() {
    platform::releaseCurrentGlContext();
}

}  // namespace zellab::gl
