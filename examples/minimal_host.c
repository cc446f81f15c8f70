/*
 * The least that a host does: loads the filter module that is named on the command line, turns a
 * small picture grey, and scales another. No dialog is shown: the options are set in the object.
 */

#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "imgbasic_host.h"

#ifndef _WIN32
#include <dlfcn.h>
#endif

enum { kWidth = 4, kHeight = 2, kScaledWidth = 2, kScaledHeight = 1, kChannels = 4 };

struct module {
    ImagePluginPrepare2_type prepare;
    ImagePluginPhase2_type phase;
    ImagePluginExecute4_type execute;
    ImagePluginDispose_type dispose;
};

/* Stores the address of a function through `function`; false, with a message, without one. */
static bool find(void* library, const char* name, void* function) {
#ifdef _WIN32
    FARPROC address = library != NULL ? GetProcAddress(library, name) : NULL;
#else
    void* address = library != NULL ? dlsym(library, name) : NULL;
#endif
    memcpy(function, &address, sizeof address);
    if (address == NULL) {
        fprintf(stderr, "there is no such module, or it lacks %s\n", name);
    }
    return address != NULL;
}

static bool load(const char* path, struct module* module) {
#ifdef _WIN32
    void* library = LoadLibraryA(path);
#else
    void* library = dlopen(path, RTLD_NOW);
#endif
    return find(library, "ImagePluginPrepare2", &module->prepare) &&
           find(library, "ImagePluginPhase2", &module->phase) &&
           find(library, "ImagePluginExecute4", &module->execute) &&
           find(library, "ImagePluginDispose", &module->dispose);
}

/* A filter object for a run over the only layer of a picture; ends the program without one. */
static imgbasic_process* prepare(const struct module* module, const char* name) {
    imgbasic_process* object =
        module->prepare(name, kWidth, kHeight, 0, 0, -1, 0x000000, 0xFFFFFF, 0, NULL, 0, NULL);
    if (object == NULL) {
        fprintf(stderr, "the module has no filter %s\n", name);
        exit(EXIT_FAILURE);
    }
    return object;
}

/*
 * Runs a filter over the only layer of a picture: `dst` is as large as `src`, or as the size that
 * the filter's object was given.
 */
static bool run(const struct module* module, const char* name, imgbasic_process* object,
                const uint16_t* src, uint16_t* dst) {
    uint32_t width = kWidth;
    uint32_t height = kHeight;
    uint32_t flag = 0;
    if (module->phase(name, object, 0, &width, &height, src, 0, 0, &flag) != 1) {
        return false;
    }
    const imgbasic_rect area = {0, 0, kWidth, kHeight};
    imgbasic_rect result = {0, 0, 0, 0};
    uint32_t code = 0;
    uint32_t kind = 0;
    uint32_t mode = 0;
    uint32_t opacity = 100;
    char layerName[64] = "layer";
    return module->execute(name, object, 0, 0, -1, 0, dst, &result, src, &area, false, &code, &kind,
                           &mode, &opacity, &flag, layerName);
}

static void print(const char* title, const uint16_t* pixels, int width, int height) {
    printf("%s, %d x %d:\n", title, width, height);
    for (int i = 0; i < width * height; ++i) {
        const uint16_t* pixel = pixels + kChannels * i;
        printf("%04" PRIX16 " %04" PRIX16 " %04" PRIX16 " %04" PRIX16 "\n", pixel[0], pixel[1],
               pixel[2], pixel[3]);
    }
}

int main(int argc, char** argv) {
    struct module module;
    if (argc != 2) {
        fprintf(stderr, "Usage: minimal_host MODULE\n");
        return 2;
    }
    if (!load(argv[1], &module)) {
        return EXIT_FAILURE;
    }

    /* Opaque pixels from black to a warm grey, 8-bit values times 256. */
    uint16_t picture[kWidth * kHeight * kChannels];
    for (int i = 0; i < kWidth * kHeight; ++i) {
        const uint16_t value = (uint16_t)(i * 0x2000);
        const uint16_t pixel[kChannels] = {value, value / 2, value / 4, 0xFF00};
        memcpy(picture + kChannels * i, pixel, sizeof pixel);
    }
    uint16_t grey[kWidth * kHeight * kChannels] = {0};
    uint16_t scaled[kScaledWidth * kScaledHeight * kChannels] = {0};

    imgbasic_process* object = prepare(&module, "gray");
    ((imgbasic_gray*)object)->CalcMode = 2; /* NTSC */
    object->TargetType = 1;                 /* every layer */
    bool done = run(&module, "gray", object, picture, grey);
    module.dispose("gray", object);

    object = prepare(&module, "scaling");
    ((imgbasic_scaling*)object)->newWidth = kScaledWidth;
    ((imgbasic_scaling*)object)->newHeight = kScaledHeight;
    ((imgbasic_scaling*)object)->InterType = 1; /* average */
    done = done && run(&module, "scaling", object, picture, scaled);
    module.dispose("scaling", object);

    if (!done) {
        fprintf(stderr, "a filter refused its picture\n");
        return EXIT_FAILURE;
    }
    print("gray", grey, kWidth, kHeight);
    print("scaling", scaled, kScaledWidth, kScaledHeight);
    return EXIT_SUCCESS;
}
