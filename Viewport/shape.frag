VARYING vec3 surfaceColor;

void MAIN()
{
    FRAGCOLOR = vec4(surfaceColor, 1.0);
}
