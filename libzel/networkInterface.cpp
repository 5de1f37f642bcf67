#include "inference/moduleLoader.h"
#include "libzel/call.h"
#include "libzel/networks/knownNetworks.h"
#include "libzel/networks/networkFile.h"
#include "libzel/networks/networkFolder.h"
#include "platform/fileProbe.h"
#include "zellab/utils/assetFolders.h"

namespace {

using namespace zel;

/// What was told last on this thread, and its strings.
struct Told {
    std::string path, problem;
    zel_network network{};
};

/// @param folder  where it lies; empty: nowhere
/// @param remedy  what brings it
void tell(Told& told, const KnownNetwork& known, const std::string& folder, const std::string& remedy) {
    const std::string_view file = known.file;
    told.network.name = known.file + (file.rfind('/') + 1);
    told.network.purpose = known.purpose;
    told.path = zellab::assetPath(folder, known.file);
    told.problem.clear();
    if (told.path.empty()) {
        told.problem = remedy;
    } else if (const std::string problem = networkProblem(told.path, known.sum); !problem.empty()) {
        told.problem = problem + "; " + remedy;
        if (!zellab::platform::pathExists(told.path.c_str())) told.path.clear();
    } else {
        told.problem = zellab::platform::networkModuleAbsence();
    }
    told.network.path = told.path.c_str();
    told.network.problem = told.problem.c_str();
}

}  // namespace

size_t zel_network_count(void) {
    return knownNetworks().size() + 1;
}

zel_status zel_network_at(zel_context* context, size_t index, const zel_network** out) {
    return guardedIn(context, [&] {
        given(out, "out") = nullptr;
        if (index >= zel_network_count()) throw badArgument("there is no network " + std::to_string(index));
        thread_local Told t_told;
        const std::string& assets = context->settings.assets;
        if (index == knownNetworks().size()) {
            tell(t_told, depthNetwork(), assets, "it belongs to the data folder");
        } else {
            const std::string folder = networkFolder(assets);
            tell(t_told, knownNetworks()[index], folder, networkFolderHint(folder));
        }
        *out = &t_told.network;
    });
}
