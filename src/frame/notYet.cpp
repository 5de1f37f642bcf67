// Operations that are declared but not built yet. Each leaves the picture as it is (void) or returns false
// (bool), with a line in the log that names it. An operation moves out of this file when its module comes;
// the file goes with the last one.
#include "frame/zel_effects.h"

#include "frame/zel_log.h"

#define ZEL_NOT_YET(name) ZEL_LOG_ERROR("%s is not available in this version", name)

namespace ZelImageCore {
void TableSkin::ImageProcessWithAutoEyeBright(unsigned char*, int, int, void*, int, float, float, float,
                                              float, float, float, float, float, float, float) {
    ZEL_NOT_YET("TableSkin::ImageProcessWithAutoEyeBright");
}
}  // namespace ZelImageCore
namespace DefocusCore {

ZelDepthDefocusRender::ZelDepthDefocusRender() = default;
ZelDepthDefocusRender::ZelDepthDefocusRender(const ZelDepthDefocusRender&) = default;
ZelDepthDefocusRender::~ZelDepthDefocusRender() = default;
ZelDepthDefocusRender& ZelDepthDefocusRender::operator=(const ZelDepthDefocusRender&) = default;
bool ZelDepthDefocusRender::Init(bool) {
    ZEL_NOT_YET("ZelDepthDefocusRender::Init");
    return false;
}
void ZelDepthDefocusRender::Release() {
    ZEL_NOT_YET("ZelDepthDefocusRender::Release");
}
void ZelDepthDefocusRender::setResourcePath(const char*, const char*) {
    ZEL_NOT_YET("ZelDepthDefocusRender::setResourcePath");
}
bool ZelDepthDefocusRender::DepthEstimate(unsigned char*, int, int, unsigned char*, int, int) {
    ZEL_NOT_YET("ZelDepthDefocusRender::DepthEstimate");
    return false;
}
bool ZelDepthDefocusRender::SetBokehImage(const char*, unsigned char*, int, int) {
    ZEL_NOT_YET("ZelDepthDefocusRender::SetBokehImage");
    return false;
}
void ZelDepthDefocusRender::SetHairMaskData(unsigned char*, int, int) {
    ZEL_NOT_YET("ZelDepthDefocusRender::SetHairMaskData");
}
bool ZelDepthDefocusRender::MixWidthMask(unsigned char*, unsigned char*, int, int, unsigned char*, int, int,
                                         float, int) {
    ZEL_NOT_YET("ZelDepthDefocusRender::MixWidthMask");
    return false;
}
bool ZelDepthDefocusRender::Run(unsigned char*, int, int, unsigned char*, int, int, int, float*, float, float,
                                bool, int, float, const char*, bool, bool, bool, float, float, float) {
    ZEL_NOT_YET("ZelDepthDefocusRender::Run");
    return false;
}
bool ZelDepthDefocusRender::Run(unsigned char*, int, int, int, float*, float, float, int, float, bool, bool,
                                float, float, float) {
    ZEL_NOT_YET("ZelDepthDefocusRender::Run");
    return false;
}
unsigned char* ZelDepthDefocusRender::createNoise(int&, int&) {
    ZEL_NOT_YET("ZelDepthDefocusRender::createNoise");
    return nullptr;
}
char* ZelDepthDefocusRender::ReadFile2String(const char*, unsigned long&) {
    ZEL_NOT_YET("ZelDepthDefocusRender::ReadFile2String");
    return nullptr;
}

}  // namespace DefocusCore
