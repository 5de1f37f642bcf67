/* A host in C: the interface, its assets from wherever it is started, and a picture. */
#include <stdio.h>
#include <zel/zel.h>

int main(void) {
    unsigned char white[] = {255, 255, 255, 255};
    const zel_pixels pixels = {white, 1, 1, 0, ZEL_RGBA8, 0};
    const zel_value strength = {"lift", NULL, -20};
    zel_inputs inputs = {0};
    zel_context* context = NULL;
    inputs.struct_size = sizeof inputs;
    if (zel_context_create(NULL, &context) != ZEL_OK) return puts(zel_message()), 1;
    if (zel_apply(context, "scenario", &pixels, &inputs) != ZEL_OK) return puts(zel_message()), 1;
    inputs.values = &strength;
    inputs.value_count = 1;
    if (zel_apply(context, "color-mixing", &pixels, &inputs) != ZEL_OK) return puts(zel_message()), 1;
    printf("libzel %s, %s\n%s\n", zel_version(), white[0] < 255 ? "darker" : "the same",
           zel_context_assets(context));
    zel_context_destroy(context);
    return 0;
}
