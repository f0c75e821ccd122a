/* A host of the five functions of the classic interface: builds an image, loads it and searches a
 * text. */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "DATInterface.h"

/* The file's bytes, NUL-terminated, to be released with free(); null when it cannot be read. */
static char* readFile(const char* name) {
    FILE* const file = fopen(name, "rb");
    if (file == NULL) return NULL;
    char* text = NULL;
    if (fseek(file, 0, SEEK_END) == 0) {
        const long end = ftell(file);
        const size_t size = end > 0 ? (size_t)end : 0;
        rewind(file);
        text = malloc(size + 1);
        if (text != NULL) text[fread(text, 1, size, file)] = '\0';
    }
    fclose(file);
    return text;
}

static void printKeys(const char* text, void* dictionary) {
    char* const result = search(text, dictionary, false);
    for (char* key = strtok(result, "\t"); key != NULL; key = strtok(NULL, "\t")) {
        printf("%s ", key);
    }
    printf("\n\n");
    freeResult(result);
}

/* An entry ends with a tab, and so does every data field: two tabs in a row end an entry, as long
 * as no data field is empty. */
static void printKeysWithData(const char* text, void* dictionary) {
    char* const result = search(text, dictionary, true);
    char* entry = result;
    for (char* end; (end = strstr(entry, "\t\t")) != NULL; entry = end + 2) {
        *end = '\0';
        for (char* tab = entry; (tab = strchr(tab, '\t')) != NULL;) *tab = ' ';
        printf("%s\n", entry);
    }
    freeResult(result);
}

int main(int argc, char** argv) {
    if (argc != 3 && argc != 4) {
        fprintf(stderr, "usage: %s SOURCE TEXT [IMAGE]\n", argv[0]);
        return 2;
    }
    const char* const image = argc == 4 ? argv[3] : "dictionary.bin";

    /* buildTree ends the process when it cannot open the source. */
    FILE* const source = fopen(argv[1], "rb");
    char* const text = readFile(argv[2]);
    if (source == NULL || text == NULL) {
        fprintf(stderr, "%s: cannot read %s\n", argv[0], source == NULL ? argv[1] : argv[2]);
        return 1;
    }
    fclose(source);

    buildTree(argv[1], image);
    void* const dictionary = loadBin(image);
    printKeys(text, dictionary);
    printKeysWithData(text, dictionary);
    destroyBin(dictionary);
    free(text);
    return 0;
}
