/*
 * A minimal agent: writes the document of this machine to standard output, and the library's errors to
 * standard error. The arguments are the GUID paths of the volumes to be backed up.
 * Exit code: 0 if the document was written, else 1.
 */

#include <fcntl.h>
#include <io.h>
#include <locale.h>
#include <objbase.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <orvane/orvane.h>

static void PrintError(int32_t level, const char* text) {
    if (level >= ORVANE_LEVEL_ERROR) {
        fprintf(stderr, "error: %s\n", text);
    }
}

/* Passes the volumes as a multi-string: each is null-terminated, and another null character ends the list. */
static int SelectVolumes(int count, char** volumes) {
    size_t length = 1;
    for (int i = 0; i < count; ++i) {
        length += strlen(volumes[i]) + 1;
    }
    wchar_t* const list = calloc(length, sizeof *list);
    if (list == NULL) {
        return 0;
    }
    size_t used = 0;
    for (int i = 0; i < count; ++i) {
        /* A string never has more characters than bytes. An empty entry would end the list. */
        const size_t characters = mbstowcs(list + used, volumes[i], length - used);
        if (characters == 0 || characters == (size_t)-1) {
            free(list);
            return 0;
        }
        used += characters + 1;
    }
    const int64_t selected = SetupSelectedVolumesList(list, used + 1);
    free(list);
    return selected == count;
}

/* Returns the document, which the caller frees, and stores its length in `size`; NULL on failure. */
static char* Capture(uint32_t* size) {
    char* document = NULL;
    uint32_t room = 0;
    /* The first call queries the size. Retry if the document has grown in between. */
    for (int attempt = 0; attempt < 5; ++attempt) {
        const uint32_t status = CaptureSystemRestorePointInfo(document, room, size);
        if (status == ORVANE_SUCCESS && document != NULL) {
            return document;
        }
        free(document);
        document = status == ORVANE_BUFFER_TOO_SMALL ? malloc(*size) : NULL;
        if (document == NULL) {
            break;
        }
        room = *size;
    }
    free(document);
    return NULL;
}

static int Run(int volume_count, char** volumes) {
    SetEventFunc(PrintError);
    if (volume_count > 0 && !SelectVolumes(volume_count, volumes)) {
        fputs("error: the volumes cannot be selected\n", stderr);
        return EXIT_FAILURE;
    }
    uint32_t size = 0;
    char* const document = Capture(&size);
    if (document == NULL) {
        return EXIT_FAILURE;
    }
    _setmode(_fileno(stdout), _O_BINARY); /* no carriage returns in the document */
    const int written = fwrite(document, 1, size, stdout) == size && fflush(stdout) == 0;
    free(document);
    return written ? EXIT_SUCCESS : EXIT_FAILURE;
}

int main(int argc, char** argv) {
    setlocale(LC_CTYPE, ""); /* the log uses this locale */
    if (FAILED(CoInitializeEx(NULL, COINIT_APARTMENTTHREADED))) {
        fputs("error: COM cannot be initialised\n", stderr);
        return EXIT_FAILURE;
    }
    const int status = Run(argc - 1, argv + 1);
    CoUninitialize();
    return status;
}
