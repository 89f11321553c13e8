// begin shader
#version 330

in vec2 out_uvs;

uniform sampler2D videoTexture;
uniform sampler2D textureTexture;
uniform int steps;
uniform float stride;

out float FragColour;

// 0.09 is sgima * sigma, or 0.3 * 0.3
float getWeight(float x) {
    return exp(-0.5 * x * x / 0.06);
}

void main() {
    int STEPS = steps;
    float total = 0.0;
    float totalWeight = 0.0;
    for (int i = -STEPS; i <= STEPS; i++) {
        float weight = getWeight(float(i) / float(STEPS));
        total += weight * texture(videoTexture, out_uvs + vec2(0.0, float(i) * stride)).r;
        totalWeight += weight;
    }
    FragColour = total / totalWeight;
}
// end shader
