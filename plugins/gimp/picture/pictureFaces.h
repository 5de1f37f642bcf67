#pragma once

#include <libgimp/gimp.h>

#include <memory>
#include <string>
#include <vector>

#include "gimp/run/pixels.h"
#include "zel/zel.hpp"

namespace zelgimp {

class TargetLayer;

/// Faces in fractions of the picture. They are found once on what is visible of it, kept with it (in its file too) and
/// sought again when its size has changed.

/// Those that the picture keeps; null where it keeps none, or where they are of another size.
libzel::Faces keptFaces(gint32 image);

/// Keeps them. No step to undo: they change nothing that can be seen.
void keepFaces(gint32 image, zel_faces* faces);

/// What is visible of the picture, to find faces on.
Rgba visiblePixels(gint32 image);

/// Those of the file of a script. Throws Refusal or libzel::Error.
libzel::Faces facesFromFile(const std::string& path);

std::vector<zel_face> listOf(const zel_faces* faces);
/// @param width   the size that they are told to be found at
libzel::Faces facesOf(const std::vector<zel_face>& list, int width, int height);

/// Fractions of the picture as fractions of the layer, and back.
std::vector<zel_face> onLayer(std::vector<zel_face> faces, const TargetLayer& layer);
std::vector<zel_face> onPicture(std::vector<zel_face> faces, const TargetLayer& layer);

/// The picture's faces for an effect on the layer; those that lie far outside of it are left out. Null: none.
std::shared_ptr<const zel_faces> facesForEffect(const zel_faces* faces, const TargetLayer& layer);

}  // namespace zelgimp
