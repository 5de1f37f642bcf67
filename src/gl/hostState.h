#pragma once

#include <GL/glew.h>

#include <array>
#include <vector>

namespace zellab::gl {

/// Owner of all state of a context that a render changes or depends on. While it lives, pixels travel in
/// packed rows to and from memory, draws reach every pixel and every colour of their target unchanged, and
/// nothing of the host's is bound; at its end, on a throw too, the host finds everything as it was. The same
/// context is current all its life. Without a usable context it does nothing.
///
/// What a host cannot be asked about stays its own care: a conditional render or a transform feedback that
/// runs while it calls this library.
class HostState {
public:
    HostState();
    ~HostState();
    HostState(const HostState&) = delete;
    HostState& operator=(const HostState&) = delete;

    /// Texture units that the renderer's draws sample from.
    static constexpr int kUnits = 6;

private:
    struct Unit {
        GLint texture = 0, sampler = 0;
    };
    /// Of one colour buffer that draws reach. Factors: source and target of the colours, then of alpha.
    struct ColourBuffer {
        bool blends = false;
        std::array<GLboolean, 4> mask{};
        std::array<GLint, 4> factors{};
        std::array<GLint, 2> equations{};
    };
    struct Viewport {
        std::array<GLfloat, 4> rectangle{};
        bool scissors = false;
    };

    void save();
    void saveColourBuffers();
    void saveViewports();
    void saveCompatibility();
    static void reset();
    void resetCompatibility() const;
    void restore() const;
    void restoreColourBuffers() const;
    void restoreViewports() const;
    void restoreCompatibility() const;

    bool m_usable;
    bool m_compatibility = false;  // the context has the fixed functions of old as well
    int m_version = 0;             // of the context, 33 for 3.3
    std::vector<GLint> m_pixelStore, m_bindings;
    std::vector<bool> m_switches, m_oldSwitches;
    std::array<Unit, kUnits> m_units{};
    GLint m_activeTexture = 0;
    std::array<GLint, 2> m_polygonMode{};
    std::vector<ColourBuffer> m_colourBuffers;
    std::vector<Viewport> m_viewports;
    std::vector<GLfloat> m_pixelTransfer;
    GLint m_fragmentClamp = 0;
};

}  // namespace zellab::gl
