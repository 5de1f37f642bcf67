#pragma once

#include <cstdint>
#include <utility>
#include <vector>

/// The inference layer that the depth engine runs on: networks, executors and tensors, behind virtual classes
/// whose slots are numbered, so that another back end may stand in for the one here. This one reads ONNX
/// files and works on the processor.

namespace tavio {

enum DeviceType : int { kDeviceHost = 1, kDeviceGpu = 2 };
enum LayoutType : int { kLayoutPlanar = 0, kLayoutInterleaved = 1 };
enum DataType : int { kDataFloat32 = 1 };

/// Numbers of options; each back end knows its own.
using ExtendOptionID = int;

/// Whether networks run on that device: host memory only.
bool IsSupport(DeviceType device);

/// A list of options for a network or an executor.
class ExtendOptions {
public:
    ExtendOptions() = default;
    ~ExtendOptions() = default;
    ExtendOptions& Add(ExtendOptionID id, int value) {
        m_options.emplace_back(id, value);
        return *this;
    }
    const std::vector<std::pair<ExtendOptionID, int>>& all() const { return m_options; }

private:
    std::vector<std::pair<ExtendOptionID, int>> m_options;
};

/// What a network tells about itself.
struct NetInformation {
    int reserved[4] = {0, 0, 1, 0};
    int inputDataType = 0;  // as numbered in the model; kDataFloat32 for 32-bit floats
};

struct InputShape {
    int reserved[2] = {0, 0};
    int n = 0, c = 0, h = 0, w = 0;
};

/// A block of floats with up to four dimensions. It refers to the caller's data, or holds what an executor
/// put into it.
class Tensor {
public:
    Tensor(const DeviceType& device, const LayoutType& layout, const DataType& type);
    ~Tensor() = default;
    Tensor(const Tensor&) = delete;
    Tensor& operator=(const Tensor&) = delete;

    Tensor& AddDim(unsigned size);
    /// Refers to the data without a copy; they must live as long as the tensor is in use.
    Tensor& ReferenceFromData(const void* data);
    const void* Data() const { return m_data; }
    /// Product of the dimensions in bytes; 0 without dimensions.
    unsigned GetBytes() const;
    /// 0 beyond the last dimension.
    unsigned GetDim(unsigned index) const;

    /// For executors: takes dimensions and values over.
    void Adopt(std::vector<unsigned> dims, std::vector<float> values);

private:
    DeviceType m_device;
    LayoutType m_layout;
    DataType m_type;
    std::vector<unsigned> m_dims;
    std::vector<float> m_owned;
    const void* m_data = nullptr;
};

/// A network. The destructor takes the first two slots.
class Net {
public:
    static Net* CreateNet(ExtendOptions* options);
    static void ReleaseNet(Net* net);

    virtual ~Net() = default;
    /// Reads a model; false, with the former model kept, where the file is missing, damaged or unsuited.
    virtual bool LoadFile(const char* path, int reserved) = 0;              // slot 3
    virtual bool GetNetInformation(NetInformation& information) const = 0;  // slot 4
    virtual bool GetInputShape(int index, InputShape& shape) const = 0;     // slot 5
    virtual void Slot6() {}                                                 // 6 to 8: free
    virtual void Slot7() {}
    virtual void Slot8() {}
    virtual void SetOption(ExtendOptionID id, std::intptr_t value) = 0;  // slot 9
};

/// Runs a network. The destructor takes the first two slots.
class Executor {
public:
    /// Null for a network without a model.
    static Executor* CreateExecutor(Net* net, ExtendOptions* options);
    static void ReleaseExecutor(Executor* executor);

    virtual ~Executor() = default;
    /// Hands over the data of an input; the tensor's data must live until Run.
    virtual bool SetInput(int index, const Tensor& input) = 0;  // slot 3
    virtual void Slot4() {}
    /// Names the tensor that the next Run fills with an output; it must live until then.
    virtual bool GetOutput(int index, Tensor& output) = 0;  // slot 5
    virtual void Slot6() {}
    virtual bool Run() = 0;  // slot 7
    virtual void Slot8() {}  // 8 to 13: free
    virtual void Slot9() {}
    virtual void Slot10() {}
    virtual void Slot11() {}
    virtual void Slot12() {}
    virtual void Slot13() {}
    virtual void SetRunOption(ExtendOptionID id, int value) = 0;  // slot 14
};

}  // namespace tavio
