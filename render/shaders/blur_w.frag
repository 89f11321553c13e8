// begin shader
#version 330

in vec2 out_uvs;

uniform sampler2D videoTexture;
uniform int steps;
uniform float stride;
uniform float opacityF;
uniform float scaleW;
uniform float scaleH;

out float FragColour;

// 0.09 is sgima * sigma, or 0.3 * 0.3
float getWeight(float x) {
    return exp(-0.5 * x * x / 0.06);
}

void main() {
    int STEPS = steps;
    vec2 m = (out_uvs - 0.5) * vec2(scaleW, scaleH) + 0.5;
    float total = 0.0;
    float totalWeight = 0.0;
    for (int i = -STEPS; i <= STEPS; i++) {
        float weight = getWeight(float(i) / float(STEPS));
        total += weight * texture(videoTexture, m + vec2(float(i) * stride, 0.0)).r;
        totalWeight += weight;
    }
    FragColour = total / totalWeight;
    FragColour *= opacityF;
}
// end shader
