// begin shader
#version 330

layout(location = 0) in vec3 geoPos;
layout(location = 1) in vec2 geoUVs;

uniform mat4 xform;

out vec2 out_uvs;

void main() {
    gl_Position = vec4(geoPos.x, geoPos.y, geoPos.z, 1.0) * xform;
    out_uvs = geoUVs;
}
// end shader
