#pragma once

#include "cli/commands/applyPlan.h"

namespace zelcli {

/// Exit statuses of the command.
constexpr int kDone = 0, kWorkFailed = 1, kWrongUsage = 2;

/// Runs one effect over the inputs. Throws UsageError before any work; returns kDone or kWorkFailed.
int runApply(const ApplyOptions& options);

}  // namespace zelcli
