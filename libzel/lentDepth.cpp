#include "libzel/lentDepth.h"

#include <new>
#include <utility>

#include "inference/moduleLoader.h"
#include "libzel/failure.h"
#include "libzel/networks/knownNetworks.h"
#include "libzel/networks/networkFile.h"
#include "platform/fileProbe.h"
#include "zellab/utils/assetFolders.h"

namespace zel {

LentDepth::LentDepth(DepthPool& pool, const std::string& assets, const char* told)
    : m_pool(pool),
      m_file(told ? std::string(told) : zellab::assetPath(assets, depthNetwork().file)),
      m_network(m_pool.take(m_file)) {
    if (m_network) return;
    const auto refusal = [&](const std::string& why) {
        return told ? Failure(m_file + ": " + why, ZEL_BAD_FILE) : assetFailure(depthNetwork().file, why);
    };
    if (!zellab::platform::pathExists(m_file.c_str()))
        throw refusal(told ? "there is no such file" : "the depth network is missing");
    if (const std::string problem = told ? "" : networkProblem(m_file, depthNetwork().sum); !problem.empty())
        throw refusal(problem);
    if (const std::string absence = zellab::platform::networkModuleAbsence(); !absence.empty())
        throw Failure(absence, ZEL_NOT_AVAILABLE);
    m_network = std::make_unique<zellab::PortraitDepth>();
    if (!m_network->load(m_file.c_str()))
        throw refusal(
            "is no depth network: an ONNX file with one float input of 1 x 3 x H x W and one or two maps "
            "out");
}

LentDepth::~LentDepth() {
    try {
        m_pool.giveBack(m_file, std::move(m_network));
    } catch (const std::bad_alloc&) {  // the next call loads one
    }
}

}  // namespace zel
