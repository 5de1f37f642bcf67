#pragma once

#include <string>

#include "inference/networkModule.h"

namespace zellab::platform {

/// The functions of the inference module, which is opened when it is first needed and stays open: the file
/// that the environment variable ZEL_NETWORKS_MODULE names by its absolute path (set and empty: none), else
/// libzel_networks.so in the folder zel beside the file that holds this code, or where the install tree or the
/// build tree have that folder. Never one from the working directory. Any thread may ask.
/// @param absence  one line that says why there is none, where there is none
/// @return null where there is none; the next call looks again
const ZelNetworkModule* networkModule(std::string& absence);

/// Why there is no inference module, in one line; empty where there is one, which is then open.
std::string networkModuleAbsence();

}  // namespace zellab::platform
