// Face data as the command reads it: what is accepted reads back as itself, and makes landmarks that the
// library can take.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "libzel/effect.h"
#include "libzel/faces/faceRecords.h"
#include "libzel/faces/facesJson.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    zel::FaceSet set;
    try {
        set = zel::parseFaces(std::string(reinterpret_cast<const char*>(input), size));
    } catch (const zel::Failure&) {
        return 0;
    }
    const std::string text = zel::formatFaces(set);
    if (zel::formatFaces(zel::parseFaces(text)) != text) std::abort();
    if (zel::makeFacePoints(set, 640, 480)->GetFaceCount() > static_cast<int>(set.faces.size())) std::abort();
    if (zel::FaceInfoBlock(set).get() == nullptr) std::abort();
    return 0;
}
