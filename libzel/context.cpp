#include <filesystem>
#include <memory>

#include "libzel/assets.h"
#include "libzel/call.h"
#include "platform/fileProbe.h"
#include "platform/utf8Path.h"

namespace {

using zel::badArgument;

constexpr int kMostThreads = 256;

/// The engine's messages on their way to the host's function.
void passOn(void* user, zellab::LogLevel level, const char* message, const char* source) {
    const auto* const context = static_cast<const zel_context*>(user);
    static_assert(static_cast<int>(zellab::LogLevel::error) == ZEL_LOG_ERROR &&
                  static_cast<int>(zellab::LogLevel::debug) == ZEL_LOG_DEBUG &&
                  static_cast<int>(zellab::LogLevel::info) == ZEL_LOG_INFO);
    context->log(context->logUser, static_cast<zel_log_level>(level), message, source);
}

std::string assetsOf(const zel_settings& told) {
    if (!told.assets) return zel::findAssets();
    if (!zellab::platform::isDirectory(told.assets))
        throw zel::Failure(std::string(told.assets) + ": is no folder with assets", ZEL_BAD_ASSET);
    // The host may go to another folder later.
    return std::filesystem::absolute(zellab::platform::utf8Path(told.assets)).lexically_normal().string();
}

}  // namespace

zel_status zel_context_create(const zel_settings* settings, zel_context** out) {
    return zel::guarded([&] {
        zel_context*& result = zel::given(out, "out");
        result = nullptr;
        const zel_settings told = zel::received(settings, "settings");
        if (told.threads < 0 || told.threads > kMostThreads) throw badArgument("threads must be 0 to 256");
        if (!zel::isOneOf(told.gl, ZEL_GL_IF_THERE, ZEL_GL_CURRENT)) throw badArgument("gl is no zel_gl");
        auto context = std::make_unique<zel_context>();
        context->log = told.log;
        context->logUser = told.log_user;
        context->gl = told.gl;
        context->settings = {.log = told.log ? passOn : nullptr,
                             .logUser = context.get(),
                             .silent = true,
                             .workers = told.threads,
                             .findsAssetsAlone = true,
                             .assets = assetsOf(told)};
        result = context.release();
    });
}

void zel_context_destroy(zel_context* context) {
    delete context;
}

const char* zel_context_assets(const zel_context* context) {
    return context ? context->settings.assets.c_str() : "";
}
