#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>

#include "frame/callSettings.h"
#include "libzel/depthPool.h"
#include "libzel/failure.h"

/// What every call of the C interface does around its work.

struct zel_context {
    zellab::CallSettings settings;  // what travels with a call to all its threads
    zel_log_function log = nullptr;
    void* logUser = nullptr;
    zel_gl gl = ZEL_GL_IF_THERE;
    zel::DepthPool depthNetworks;
};

namespace zel {

/// Keeps the message of the calling thread's last failure; never fails itself.
zel_status fail(zel_status status, const char* why) noexcept;

/// Runs work(), which throws a Failure, and turns whatever it throws into a status.
template <typename Work>
zel_status guarded(const Work& work) noexcept {
    try {
        work();
        return ZEL_OK;
    } catch (const Failure& failure) {
        return fail(failure.status(), failure.what());
    } catch (const std::bad_alloc&) {
        return fail(ZEL_NO_MEMORY, "there is not enough memory for it");
    } catch (const std::length_error&) {
        // In 32 bits a container may be asked for more than any memory holds.
        return fail(ZEL_NO_MEMORY, "there is not enough memory for it");
    } catch (const std::exception& problem) {
        return fail(ZEL_FAILED, problem.what());
    } catch (...) {
        return fail(ZEL_FAILED, "an unknown failure");
    }
}

/// The same with the context's settings on this thread and on those that it starts.
template <typename Work>
zel_status guardedIn(const zel_context* context, const Work& work) noexcept {
    if (!context) return fail(ZEL_BAD_ARGUMENT, "the context is null");
    const zellab::CallScope scope(&context->settings);
    return guarded(work);
}

inline Failure badArgument(const std::string& why) {
    return Failure(why, ZEL_BAD_ARGUMENT);
}

/// A pointer that must lead somewhere, to something of its type's alignment.
template <typename T>
T& given(T* pointer, const char* what) {
    if (!pointer) throw badArgument(std::string(what) + " is null");
    if (reinterpret_cast<std::size_t>(pointer) % alignof(T) != 0)
        throw badArgument(std::string(what) + " is misaligned");
    return *pointer;
}

/// A caller's enumerator as the number that it holds. C lets it hold any, and C++ may not even look at one that
/// is none.
template <typename Enum>
int numberOf(const Enum& enumerator) {
    static_assert(sizeof(Enum) == sizeof(int));
    int number = 0;
    std::memcpy(&number, &enumerator, sizeof number);
    return number;
}

/// Whether it holds one of the enumerators from the first to the last.
template <typename Enum>
bool isOneOf(const Enum& enumerator, Enum first, Enum last) {
    const int number = numberOf(enumerator);
    return number >= numberOf(first) && number <= numberOf(last);
}

/// How many bytes of a struct both know: the caller by its struct_size, this version by its own. The size of any
/// version is a multiple of the alignment; where it was told otherwise, the field that it cuts does not count, or half
/// a pointer would lead anywhere.
template <typename Struct>
constexpr std::size_t commonSize(std::size_t told) {
    return std::min(told - told % alignof(Struct), sizeof(Struct));
}

/// A caller's struct as this version knows it: fields that an older caller lacks are zero.
/// @param pointer  null: all zero
template <typename Struct>
Struct received(const Struct* pointer, const char* what) {
    Struct own{};
    if (!pointer) return own;
    const std::size_t size = given(pointer, what).struct_size;
    if (size < sizeof(std::size_t)) throw badArgument(std::string(what) + " has no struct_size");
    const auto* const bytes = reinterpret_cast<const unsigned char*>(pointer);
    std::copy(bytes, bytes + commonSize<Struct>(size), reinterpret_cast<unsigned char*>(&own));
    return own;
}

}  // namespace zel
