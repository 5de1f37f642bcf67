/* Retouches a portrait through the C interface, whatever its host is written in.
   Usage: embedInC PORTRAIT OUT.ppm [FACES.json] */
#include <stdio.h>
#include <zel/zel.h>

static int failed(const char* what) {
    return fprintf(stderr, "%s: %s\n", what, zel_message()), 1;
}

int main(int argc, char** argv) {
    static char json[1 << 20];
    zel_context* context = NULL;
    zel_picture* picture = NULL;
    zel_faces* faces = NULL;
    zel_pixels pixels;
    zel_inputs inputs = {.struct_size = sizeof inputs};
    const zel_value values[] = {{"type", "portrait", 0}, {"alpha", NULL, 0.8}};
    if (argc < 3) return fprintf(stderr, "usage: embedInC PORTRAIT OUT.ppm [FACES.json]\n"), 2;

    if (zel_context_create(NULL, &context) != ZEL_OK) return failed(argv[0]);
    for (size_t i = 0; i < zel_effect_count(); ++i)
        printf("%-22s %s\n", zel_effect_at(i)->name, zel_effect_at(i)->summary);
    if (zel_decode_file(context, argv[1], NULL, &picture) != ZEL_OK) return failed(argv[1]);
    zel_picture_pixels(picture, &pixels);

    if (argc > 3) { /* faces from the host's own finder */
        FILE* file = fopen(argv[3], "rb");
        if (!file) return perror(argv[3]), 1;
        const size_t length = fread(json, 1, sizeof json, file);
        fclose(file);
        if (zel_faces_from_json(json, length, &faces) != ZEL_OK) return failed(argv[3]);
    } else if (zel_find_faces(context, &pixels, &faces) != ZEL_OK) {
        return failed(argv[1]);
    }
    inputs.values = values;
    inputs.value_count = 2;
    if (zel_faces_count(faces) > 0) inputs.faces = faces; /* none: the picture as a whole */
    if (zel_apply(context, "scenario", &pixels, &inputs) != ZEL_OK) return failed(argv[1]);

    FILE* out = fopen(argv[2], "wb");
    if (!out) return perror(argv[2]), 1;
    fprintf(out, "P6 %d %d 255\n", pixels.width, pixels.height);
    for (int i = 0; i < pixels.width * pixels.height; ++i)
        fwrite((unsigned char*)pixels.data + 4 * (size_t)i, 1, 3, out);
    fclose(out);
    zel_faces_destroy(faces);
    zel_picture_destroy(picture);
    zel_context_destroy(context);
    return 0;
}
