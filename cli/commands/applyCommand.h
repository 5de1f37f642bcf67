#pragma once

#include "cli/commands/applyOptions.h"

namespace zelcli {

/// Exit statuses of the command.
constexpr int kDone = 0, kWorkFailed = 1, kWrongUsage = 2;

/// Runs a chain of effects over the inputs. Throws UsageError before any work; returns kDone or kWorkFailed. Ends the
/// process by the signal that interrupts it, when what was begun is done or undone.
int runApply(ApplyOptions options);

}  // namespace zelcli
