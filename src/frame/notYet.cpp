// Operations that are declared but not built yet. Each leaves the picture as it is (void) or returns false
// (bool), with a line in the log that names it. An operation moves out of this file when its module comes;
// the file goes with the last one.
#include "frame/zel_effects.h"

#include "frame/zel_log.h"

#define ZEL_NOT_YET(name) ZEL_LOG_ERROR("%s is not available in this version", name)

namespace ZelImageCore {
void TableSkin::ImageProcessWithQornSkinRetouch(unsigned char*, int, int, float, ImageCoreFaceInfo*,
                                                unsigned char*) {
    ZEL_NOT_YET("TableSkin::ImageProcessWithQornSkinRetouch");
}
void TableSkin::ImageProcessWithQornSkinWhitening(unsigned char*, int, int, float*, ImageCoreFaceInfo*,
                                                  unsigned char*, unsigned char*) {
    ZEL_NOT_YET("TableSkin::ImageProcessWithQornSkinWhitening");
}
void TableSkin::ImageProcessWithSkin(unsigned char*, int, int, float*, char*) {
    ZEL_NOT_YET("TableSkin::ImageProcessWithSkin");
}
void TableSkin::ImageProcessWithSkinColor(unsigned char*, int, int, float, float, const unsigned char*, int,
                                          int) {
    ZEL_NOT_YET("TableSkin::ImageProcessWithSkinColor");
}
}  // namespace ZelImageCore
