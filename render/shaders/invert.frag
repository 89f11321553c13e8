// begin shader
#version 330

in vec2 out_uvs;

uniform sampler2D videoTexture;
uniform float opacityF;
uniform float scaleW;
uniform float scaleH;

out float FragColour;

void main() {
    vec2 m = (out_uvs - 0.5) * vec2(scaleW, scaleH) + 0.5;
    FragColour = (1.0 - texture(videoTexture, m).r) * opacityF;
}
// end shader
