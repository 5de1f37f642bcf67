// The exported assignments: classes without data have nothing to assign.
#include "zel_effects/zel_effects.h"

namespace ZelImageCore {

TableBase& TableBase::operator=(const TableBase&) {
    return *this;
}
TableBase& TableBase::operator=(TableBase&&) {
    return *this;
}
TableSkin& TableSkin::operator=(const TableSkin&) {
    return *this;
}
TableSkin& TableSkin::operator=(TableSkin&&) {
    return *this;
}
StbImageUtil& StbImageUtil::operator=(const StbImageUtil&) {
    return *this;
}
StbImageUtil& StbImageUtil::operator=(StbImageUtil&&) {
    return *this;
}
CScenarioBeauty& CScenarioBeauty::operator=(const CScenarioBeauty&) {
    return *this;
}

}  // namespace ZelImageCore

CFaceSlimRender& CFaceSlimRender::operator=(const CFaceSlimRender&) {
    return *this;
}
CFaceSlimRender& CFaceSlimRender::operator=(CFaceSlimRender&&) {
    return *this;
}
CEyeZoomRender& CEyeZoomRender::operator=(const CEyeZoomRender&) {
    return *this;
}
CEyeZoomRender& CEyeZoomRender::operator=(CEyeZoomRender&&) {
    return *this;
}
