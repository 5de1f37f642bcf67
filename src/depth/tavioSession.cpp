#include "depth/tavioSession.h"

#include <algorithm>

#include "depth/depthLog.h"
#include "depth/networkPixels.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zellab {

namespace {

/// The first map of an output, or nothing where the tensor holds fewer values than its dimensions say.
std::vector<Byte> bytesOf(const tavio::Tensor& output, std::size_t channels, std::size_t samples,
                          bool interleaved) {
    const auto* values = static_cast<const float*>(output.Data());
    if (!values || samples == 0 || output.GetBytes() / sizeof(float) < channels * samples) return {};
    std::vector<float> planes;
    if (interleaved) {
        planes.resize(channels * samples);
        groupsToPlanes(values, channels, samples, planes.data());
        values = planes.data();
    }
    std::vector<Byte> bytes(samples);
    mapToBytes(values, samples, bytes.data());
    return bytes;
}

}  // namespace

bool openNetwork(const NetOwner& net, const char* path, ExecutorOwner& executor) {
    if (!net) {
        logDepth("Not successfully initialized Tavio Net!");
        return false;
    }
    if (!net->LoadFile(path, 0)) {
        logDepth("Net Load File Failed: %s", path ? path : "(null)");
        return false;
    }
    executor.reset(tavio::Executor::CreateExecutor(net.get(), nullptr));
    if (!executor) logDepth("CreateExecutor Failed!");
    return executor != nullptr;
}

bool DepthMaps::copyTo(Byte* outDepth, Byte* outSecond) const {
    if (!outDepth || !outSecond) {
        logDepth("GetOutputData Failed!");
        return false;
    }
    std::copy(second.begin(), second.end(), outSecond);
    std::copy(depth.begin(), depth.end(), outDepth);
    return true;
}

std::vector<float> networkInput(ConstImageView image, const tavio::InputShape& shape, bool interleaved) {
    const std::size_t pixels = sampleCount(shape.w, shape.h);
    RgbaImage scaled;
    bool usable = image.valid() && shape.c >= 3 && pixels > 0;
    if (usable && (image.height != shape.h || image.width != shape.w)) {
        scaled = RgbaImage(shape.w, shape.h);
        usable = scaleArgb(image, scaled.view(), YuvFilter::none);
        image = scaled.view();
    }
    if (!usable) {
        logDepth("GetInputData Failed!");
        return {};
    }
    std::vector<float> input(pixels * static_cast<std::size_t>(shape.c));
    if (interleaved)
        pixelsToGroups(image, input.data(), shape.c);
    else
        pixelsToPlanes(image, input.data());
    return input;
}

bool readMaps(const tavio::Tensor& output0, const tavio::Tensor& output1, bool interleaved, DepthMaps& maps) {
    const unsigned dims[] = {output0.GetDim(0), output0.GetDim(1), output0.GetDim(2), output0.GetDim(3)};
    logDepth("output shape:%u x %u x %u x %u", dims[0], dims[1], dims[2], dims[3]);
    maps.height = static_cast<int>(dims[2]);
    maps.width = static_cast<int>(dims[3]);
    // The dimensions of output 0 are used for both; an output 1 that holds less is no map of that size.
    const std::size_t samples = sampleCount(maps.width, maps.height);
    maps.second = bytesOf(output0, dims[1], samples, interleaved);
    maps.depth = bytesOf(output1, dims[1], samples, interleaved);
    if (!maps.second.empty() && !maps.depth.empty()) return true;
    logDepth("GetOutputData Failed!");
    return false;
}

}  // namespace zellab
