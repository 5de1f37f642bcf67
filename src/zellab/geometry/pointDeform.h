#pragma once

#include <vector>

namespace zellab {

/// A list of points as one array per axis, both of the list's length.
struct PointLists {
    std::vector<float> x, y;

    PointLists() = default;
    explicit PointLists(std::size_t count) : x(count), y(count) {}
    std::size_t size() const { return x.size(); }
    void append(float px, float py) {
        x.push_back(px);
        y.push_back(py);
    }
};

/// Moving-least-squares deformations of point lists (Schaefer, McPhail and Warren, "Image Deformation Using
/// Moving Least Squares", 2006). Control i weighs 1 / (s^2 + 1e-8) at a point, s the squared distance.
/// @param out           receives pointCount points; it may be the same object as `points`
/// @param controlsFrom  where the controls stand, controlsTo where they are moved; controlCount each
///
/// A point on which the fit is singular (the rigid form on the centroid of its controls, the affine form
/// with collinear controls) becomes not-a-number or infinite; nothing guards against it.
void RigidMlsDeform(const PointLists& points, PointLists& out, const PointLists& controlsFrom,
                    const PointLists& controlsTo, int controlCount, int pointCount);
void AffineMlsDeform(const PointLists& points, PointLists& out, const PointLists& controlsFrom,
                     const PointLists& controlsTo, int controlCount, int pointCount);

}  // namespace zellab
