// Distance from the picture's centre: 0 there, 1 at the corners.

in vec2 textureCoordinate;
layout(location = 0) out vec4 fragColor;

uniform vec2 reso;  // width and height of the picture over its diagonal

void main() {
    fragColor = vec4(length((2.0 * textureCoordinate - 1.0) * reso));
}
