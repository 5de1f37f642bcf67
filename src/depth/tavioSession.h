#pragma once

#include <memory>
#include <vector>

#include "inference/tavio.h"
#include "zellab/imageproc/core/imageView.h"

/// What both estimators share: owners of the inference layer's objects, the input and the output maps.

namespace zellab {

struct NetDeleter {
    void operator()(tavio::Net* net) const { tavio::Net::ReleaseNet(net); }
};
struct ExecutorDeleter {
    void operator()(tavio::Executor* executor) const { tavio::Executor::ReleaseExecutor(executor); }
};
using NetOwner = std::unique_ptr<tavio::Net, NetDeleter>;
using ExecutorOwner = std::unique_ptr<tavio::Executor, ExecutorDeleter>;

/// Loads the network file into `net` and makes its executor. False with the line about what failed; an
/// executor made before then stays.
bool openNetwork(const NetOwner& net, const char* path, ExecutorOwner& executor);

/// Both maps of a run as bytes, of width * height samples each.
struct DepthMaps {
    int width = 0, height = 0;
    std::vector<Byte> depth;   // network output 1
    std::vector<Byte> second;  // network output 0, the confidence

    /// Copies both to the caller's buffers, which hold width * height bytes each; false, with the line about
    /// it and nothing written, where one is null.
    bool copyTo(Byte* outDepth, Byte* outSecond) const;
};

/// A tensor of 32-bit floats in host memory.
class HostTensor : public tavio::Tensor {
public:
    HostTensor() : Tensor(tavio::kDeviceHost, tavio::kLayoutPlanar, tavio::kDataFloat32) {}
};

/// Scales the image to the network's size without filtering where the sizes differ, and lays it out as
/// floats, 0 to 1, blue first. Empty, with the line about it, for an image that is not valid and for a
/// network of fewer than three channels.
std::vector<float> networkInput(ConstImageView image, const tavio::InputShape& shape, bool interleaved);

/// The bytes of both outputs. False, with the line about it, where an output holds no map or the two do not
/// match in size.
bool readMaps(const tavio::Tensor& output0, const tavio::Tensor& output1, bool interleaved, DepthMaps& maps);

}  // namespace zellab
