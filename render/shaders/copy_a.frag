//
#version 330

in vec2 out_uvs;

uniform sampler2D videoTexture;

out float FragColour;

void main() {
    FragColour = texture(videoTexture, out_uvs).r;
}
//
