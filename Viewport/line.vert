VARYING vec3 surfaceColor;

const float nearLight = 0.95;
const float farLight = 0.35;

void MAIN()
{
    vec4 place = MODEL_MATRIX * vec4(VERTEX, 1.0);
    float depth = -(VIEW_MATRIX * place).z;
    surfaceColor = COLOR.rgb * mix(nearLight, farLight, clamp((depth - nearest) / (farthest - nearest), 0.0, 1.0));
    POSITION = VIEWPROJECTION_MATRIX * place;
}
