#include "inference/tavio.h"

namespace tavio {

bool IsSupport(DeviceType device) {
    return device == kDeviceHost;
}

Tensor::Tensor(const DeviceType& device, const LayoutType& layout, const DataType& type)
    : m_device(device), m_layout(layout), m_type(type) {}

Tensor& Tensor::AddDim(unsigned size) {
    m_dims.push_back(size);
    return *this;
}

Tensor& Tensor::ReferenceFromData(const void* data) {
    m_owned.clear();
    m_data = data;
    return *this;
}

unsigned Tensor::GetBytes() const {
    if (m_dims.empty()) return 0;
    unsigned bytes = sizeof(float);
    for (const unsigned size : m_dims) bytes *= size;
    return bytes;
}

unsigned Tensor::GetDim(unsigned index) const {
    return index < m_dims.size() ? m_dims[index] : 0;
}

void Tensor::Adopt(std::vector<unsigned> dims, std::vector<float> values) {
    m_dims = std::move(dims);
    m_owned = std::move(values);
    m_data = m_owned.data();
}

}  // namespace tavio
