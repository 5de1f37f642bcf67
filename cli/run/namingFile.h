#pragma once

#include <new>
#include <string>

#include "cli/failure.h"

namespace zelcli {

/// Runs work() and gives every failure the name of its file.
template <typename Work>
auto namingFile(const std::string& file, const Work& work) {
    try {
        return work();
    } catch (const FileFailure&) {
        throw;
    } catch (const UsageError&) {
        throw;
    } catch (const Failure& failure) {
        throw FileFailure(file, failure.what());
    } catch (const std::bad_alloc&) {
        throw FileFailure(file, "there is not enough memory for it");
    } catch (const std::exception& problem) {
        throw FileFailure(file, problem.what());
    }
}

}  // namespace zelcli
