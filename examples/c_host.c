/* A host in C: builds an image, opens it, and shows the longest key at every position of a text,
 * with the position and its data. */

#include <stdio.h>
#include <stdlib.h>

#include "Dictionary.h"

static int fail(const DictionaryError* error) {
    char message[512];
    dictionaryErrorMessage(error, message, sizeof message);
    fprintf(stderr, "%s\n", message);
    return 1;
}

static void printProblem(void* context, const DictionaryError* problem) {
    (void)context;
    fail(problem);
}

static bool build(const char* source, const char* image) {
    DictionaryBuildOptions options = {0};
    options.size = sizeof options;
    options.onProblem = printProblem;
    return dictionaryBuildFile(source, image, &options, NULL, NULL) == DICTIONARY_OK;
}

/* The file's bytes, to be released with free(); null when it cannot be read. */
static char* readFile(const char* name, size_t* size) {
    FILE* const file = fopen(name, "rb");
    if (file == NULL) return NULL;
    char* bytes = NULL;
    size_t room = 0;
    *size = 0;
    do {
        room = 2 * room + 4096;
        char* const grown = realloc(bytes, room);
        if (grown == NULL) break;
        bytes = grown;
        *size += fread(bytes + *size, 1, room - *size, file);
    } while (*size == room);
    fclose(file);
    return bytes;
}

/* Prints the fields of a data text. Blanks separate the fields of a record, ";" separates
 * records. */
static void printFields(DictionaryText data) {
    DictionaryField field = {{NULL, 0}, false};
    const char* separator = "";
    while (dictionaryNextField(&data, &field)) {
        if (field.beginsRecord && *separator != '\0') separator = "; ";
        printf("%s%.*s", separator, (int)field.text.size, field.text.bytes);
        separator = " ";
    }
}

static int printKeys(const DictionaryHandle* words, DictionaryText text) {
    DictionaryFindOptions options = {0};
    options.size = sizeof options;
    options.mode = DICTIONARY_FIND_LONGEST;
    DictionaryMatches matches = {0};
    DictionaryError error;
    if (dictionaryFindMatches(words, &options, text, &matches, &error) != DICTIONARY_OK) {
        return fail(&error);
    }
    for (size_t i = 0; i < matches.count; ++i) {
        const DictionaryMatch* const match = &matches.items[i];
        printf("%zu %.*s: ", match->start, (int)match->length, text.bytes + match->start);
        printFields(match->data);
        printf("\n");
    }
    dictionaryFreeMatches(&matches);
    return 0;
}

int main(int argc, char** argv) {
    if (argc != 3 && argc != 4) {
        fprintf(stderr, "usage: %s SOURCE TEXT [IMAGE]\n", argv[0]);
        return 2;
    }
    const char* const image = argc == 4 ? argv[3] : "dictionary.bin";
    if (!build(argv[1], image)) return 1;

    DictionaryError error;
    DictionaryHandle* const words = dictionaryOpenFile(image, DICTIONARY_OPEN_MAP, &error);
    if (words == NULL) return fail(&error);
    size_t size = 0;
    char* const bytes = readFile(argv[2], &size);
    int status = 1;
    if (bytes == NULL) {
        fprintf(stderr, "%s: cannot read %s\n", argv[0], argv[2]);
    } else {
        const DictionaryText text = {bytes, size};
        status = printKeys(words, text);
    }
    free(bytes);
    dictionaryClose(words);
    return status;
}
