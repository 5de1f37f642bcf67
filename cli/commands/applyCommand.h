#pragma once

#include "applyPlan.h"

namespace zel {

/// Exit statuses of the command.
constexpr int kDone = 0, kWorkFailed = 1, kWrongUsage = 2;

/// Runs one effect over the inputs. Throws UsageError before any work; returns kDone or kWorkFailed.
int runApply(const ApplyOptions& options);

}  // namespace zel
