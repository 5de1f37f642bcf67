#pragma once

#include <string>

namespace zellab {

/// Small files that effects read at run time.
class ZelFileUtils {
public:
    /// Loads a style asset: two little-endian 32-bit words, width and height, then raw pixels.
    ///
    /// Where the asset root is set and nothing lies at `path` itself, the file is looked for below the root;
    /// where neither is there, a relative path is looked for below assetFolders().
    /// @param width, height  receive the head words, 0 where the file ends before them
    /// @param channels       bytes a pixel; the file does not say
    /// @return width * height * channels bytes, released with free(); bytes that the file does not have are
    ///         0. Null where the path is null (logged as an error), nothing lies there (logged as progress),
    ///         or, without a message, where a head word is below 1, the size is beyond any asset's, the
    ///         file cannot be read or is no regular file.
    static unsigned char* LoadPPM(const char* path, int* width, int* height, int channels);

    /// The file that LoadPPM opens for `path`; empty where nothing lies at any of the places. A call that has
    /// settings with a folder of its own (frame/callSettings.h) finds assets there alone.
    static std::string FindAsset(const char* path);

    /// Process-wide folder of assets, empty at first: paths are then relative to the working directory.
    static const char* GetAssetRoot();

    /// Moves the asset root; null empties it. Not while another thread loads. The library never calls it.
    static void SetAssetRoot(const char* root);
};

}  // namespace zellab
