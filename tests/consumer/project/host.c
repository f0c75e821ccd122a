/* Says which library it found. Fails unless the headers are of the same version. */

#include <stdio.h>
#include <string.h>

#include "DATInterface.h"
#include "Dictionary.h"

int main(void) {
    destroyBin(NULL);
    printf("headers %s, library %s\n", DICTIONARY_VERSION, dictionaryVersion());
    return strcmp(DICTIONARY_VERSION, dictionaryVersion()) != 0;
}
