VARYING vec3 surfaceColor;

const float ambient = 1.0 / 3.0;

void MAIN()
{
    mat4 place = INSTANCE_MODEL_MATRIX;
    vec3 stretch = vec3(length(place[0].xyz), length(place[1].xyz), length(place[2].xyz));

    // Far away, shapes are drawn thicker than they are, so that they do not vanish between pixels.
    vec3 axisPoint = (place * vec4(0.0, isBall ? 0.0 : VERTEX.y, 0.0, 1.0)).xyz;
    float growth = max(thickness, thickening * distance(axisPoint, CAMERA_POSITION));
    vec3 grown = isBall ? VERTEX * growth : vec3(VERTEX.x * growth, VERTEX.y, VERTEX.z * growth);

    vec3 normal = normalize(mat3(place) * (NORMAL / (stretch * stretch)));
    float light = min(1.0, ambient + max(0.0, dot(normal, lightDirection)));
    surfaceColor = INSTANCE_COLOR.rgb * light;
    POSITION = VIEWPROJECTION_MATRIX * (place * vec4(grown, 1.0));
}
