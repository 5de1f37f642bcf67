#include "frame/callSettings.h"

namespace zellab {

namespace {

thread_local const CallSettings* t_settings = nullptr;

}  // namespace

const CallSettings* callSettings() {
    return t_settings;
}

CallScope::CallScope(const CallSettings* settings) : m_previous(t_settings) {
    t_settings = settings;
}
CallScope::~CallScope() {
    t_settings = m_previous;
}

}  // namespace zellab
