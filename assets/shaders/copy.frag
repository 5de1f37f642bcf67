// The blurred working picture as it is.

in vec2 textureCoordinate;
layout(location = 0) out vec4 fragColor;

uniform sampler2D tex_src;

void main() {
    fragColor = texture(tex_src, textureCoordinate);
}
