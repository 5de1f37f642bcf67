#include <algorithm>

#include "bokeh/passDraw.h"
#include "bokeh/passTables.h"
#include "bokeh/passes.h"
#include "bokeh/tileGrid.h"
#include "gl/glLog.h"

namespace zellab::Bokeh {

namespace {

gl::RendererLog& passLog() {
    static gl::RendererLog log;
    return log;
}

ShaderProgram& setLook(ShaderProgram& program, const LookValues& look) {
    return program.setFloat("amount", look.amount)
        .setFloat("intensity", look.intensity)
        .setFloat("highlights", look.highlights)
        .setFloat("vivid", look.vivid);
}

ShaderProgram prepare(ShaderCache& cache, const ConvolutionTextures& textures,
                      const ConvolutionSource& processor, const Texture2D& target) {
    const bool constant = !processor.radius.valid();
    ShaderProgram program = cache.program((constant ? kConvolutionConstant : kConvolution).key);
    if (!program.isValid()) return program;
    const auto table = spinTable(processor.spin.valid());
    setPixelSize(program, "reso", target)
        .setFloat(constant ? "radius" : "max_radius", static_cast<float>(processor.maximumRadius))
        .setVec3Array("table", kRecords, table.data())
        .setTexture("tex_src", nearest(textures.small), 0)
        .setTexture("tex_bokeh", nearest(textures.kernel), 2)
        .setTexture("tex_bokeh_ratio", nearest(textures.ratio), 3);
    if (!constant) program.setTexture("tex_bokeh_radius", nearest(textures.radius), 4);
    setLook(program, processor.look);
    return program;
}

/// OpenGL's share of the tiles. A draw covers the whole target, whatever its rectangle; so the first one has
/// painted every tile that is claimed after it, and to draw those again would only repeat its work.
bool paintTiles(const ShaderProgram& program, const Texture2D& target, const TileGrid& grid,
                std::atomic<int>& next) {
    bool painted = false;
    for (int number = next.fetch_add(1); number < grid.count(); number = next.fetch_add(1)) {
        if (painted) continue;
        const Tile tile = grid.tile(number);
        const auto w = static_cast<float>(target.width()), h = static_cast<float>(target.height());
        bool drawn = false;
        target.drawInto([&] {
            drawn = program.draw(GL_TRIANGLES, static_cast<float>(tile.x) / w, static_cast<float>(tile.y) / h,
                                 static_cast<float>(tile.width) / w, static_cast<float>(tile.height) / h);
        });
        if (!drawn) return false;
        painted = true;
    }
    return true;
}

void layTiles(const std::vector<CpuTile>& tiles, const Texture2D& target) {
    for (const CpuTile& tile : tiles)
        if (!target.write(tile.place.x, tile.place.y, tile.place.width, tile.place.height,
                          tile.pixels.data()))
            passLog().error("failed to write data to tex_dst");
}

}  // namespace

bool convolve(ShaderCache& cache, const ConvolutionTextures& textures, const ConvolutionSource& processor,
              bool cpuOnly, const Texture2D& target) {
    if (!processor.radius.valid())
        passLog().error("TODO(Oslo): convolution_type_0_with_constant_radius.frag not Impl");
    const ShaderProgram program = prepare(cache, textures, processor, target);
    const bool sizesFit = processor.image.valid() && processor.image.width == target.width() &&
                          processor.image.height == target.height();
    if (!program.isValid() || !sizesFit) return false;
    if (!isKernelStrip(processor.kernel)) return !cpuOnly && drawOver(target, program);

    const TileGrid grid(target.width(), target.height());
    std::atomic<int> next{0};
    std::future<std::vector<CpuTile>> chore = startTileChore(processor, next);
    if (!chore.valid()) passLog().error("Fail to schedule the chore!");
    const bool painted = cpuOnly || paintTiles(program, target, grid, next);
    // Without its thread the processor's work is this one's: nothing if OpenGL has painted, else all of it.
    layTiles(chore.valid() ? chore.get() : computeTiles(processor, next, 1), target);
    return painted;
}

bool convolveFree(ShaderCache& cache, const ConvolutionTextures& textures, const LookValues& look,
                  int maximumRadius, const FreeShape& shape, const Texture2D& target) {
    ShaderProgram program = cache.program(kConvolutionFree.key);
    if (!program.isValid()) return false;
    setPixelSize(program, "reso", target)
        .setFloat("max_radius", static_cast<float>(maximumRadius))
        .setFloat("corrosion", shape.corrosion)
        .setFloat("radial", shape.radial)
        .setFloat("swirly", shape.swirly)
        .setFloat("curvature", shape.curvature)
        .setTexture("tex_src", nearest(textures.small), 0)
        .setTexture("tex_bokeh", nearest(textures.kernel), 1)
        .setTexture("tex_bokeh_ratio", nearest(textures.ratio), 2)
        .setTexture("tex_bokeh_radius", nearest(textures.radius), 3);
    setLook(program, look);
    return drawOver(target, program);
}

}  // namespace zellab::Bokeh
